#include "vemba/ads/VembaSDK.h"

#include "ads/core/UserAgentFetcher.h"
#include "ads/core/VembaLogger.h"

namespace vemba {

VembaSDK& VembaSDK::shared() {
  static auto* const instance = new VembaSDK();
  return *instance;
}

std::optional<std::string> VembaSDK::apiKey() const {
  const std::lock_guard lock(mutex_);
  return apiKey_;
}

void VembaSDK::initialize(const VembaConfiguration& configuration,
                          const std::function<void(bool)>& completion) {
  {
    const std::lock_guard lock(mutex_);
    apiKey_ = configuration.apiKey;
  }
  VembaLogger::log(std::string(log_message::kInitializing) + configuration.apiKey);
  UserAgentFetcher::shared().fetch([&completion](const std::string& userAgent) {
    VembaLogger::log(std::string(log_message::kUserAgentPrewarmed) + userAgent);
    if (completion) {
      completion(true);
    }
  });
}

void VembaSDK::resetForTesting() {
  const std::lock_guard lock(mutex_);
  apiKey_.reset();
}

}  // namespace vemba
