#include "vemba/ads/VembaSDK.h"

#include <mutex>

#include "ads/core/AdsState.h"
#include "ads/core/UserAgentFetcher.h"
#include "ads/core/VembaLogger.h"
#include "ads/formats/VembaWebViewController.h"

namespace vemba {
VembaSDK& VembaSDK::shared() {
  static auto* const instance = new VembaSDK();
  return *instance;
}

std::optional<std::string> VembaSDK::apiKey() const {
  ads::AdsState::Sdk& store = ads::state().sdk;
  const std::lock_guard lock(store.mutex);
  return store.apiKey;
}

void VembaSDK::setPrivacy(VembaPrivacy privacy) {
  ads::AdsState::Sdk& store = ads::state().sdk;
  const std::lock_guard lock(store.mutex);
  store.privacy = std::move(privacy);
}

VembaPrivacy VembaSDK::privacy() const {
  ads::AdsState::Sdk& store = ads::state().sdk;
  const std::lock_guard lock(store.mutex);
  return store.privacy;
}

void VembaSDK::setApplicationMuted(bool muted) {
  {
    ads::AdsState::Sdk& store = ads::state().sdk;
    const std::lock_guard lock(store.mutex);
    store.muted = muted;
  }
  ads::VembaWebViewController::applicationMutedDidChange(muted);
}

bool VembaSDK::isApplicationMuted() const {
  ads::AdsState::Sdk& store = ads::state().sdk;
  const std::lock_guard lock(store.mutex);
  return store.muted;
}

double VembaSDK::adLifetimeSeconds() const {
  ads::AdsState::Sdk& store = ads::state().sdk;
  const std::lock_guard lock(store.mutex);
  return store.adLifetimeSeconds;
}

void VembaSDK::initialize(const VembaConfiguration& configuration,
                          const std::function<void(bool)>& completion) {
  {
    ads::AdsState::Sdk& store = ads::state().sdk;
    const std::lock_guard lock(store.mutex);
    store.apiKey = configuration.apiKey;
    store.adLifetimeSeconds = configuration.adLifetimeSeconds;
  }
  VembaLogger::log(std::string(log_message::kInitializing) + configuration.apiKey);
  VembaLogger::log(std::string(log_message::kUserAgentPrewarmed) +
                   UserAgentFetcher::shared().userAgent());
  if (completion) {
    completion(true);
  }
}

}  // namespace vemba
