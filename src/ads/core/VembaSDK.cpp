#include "vemba/ads/VembaSDK.h"

#include <mutex>

#include "ads/core/UserAgentFetcher.h"
#include "ads/core/VembaLogger.h"
#include "ads/core/VembaSDKForTesting.h"
#include "ads/formats/AdWebViewPreparation.h"
#include "ads/formats/VembaWebViewController.h"

namespace vemba {
namespace {

// The entry point's state: the key of the last initialize() and the host's privacy signals, read
// from any thread. Created on first use and never destroyed, like the entry point itself.
struct ApiKeyStore {
  std::mutex mutex;
  std::optional<std::string> apiKey;
  VembaPrivacy privacy;
  double adLifetimeSeconds = 0;
  bool muted = false;
};

ApiKeyStore& apiKeyStore() {
  static auto* const store = new ApiKeyStore();
  return *store;
}

}  // namespace

VembaSDK& VembaSDK::shared() {
  static auto* const instance = new VembaSDK();
  return *instance;
}

std::optional<std::string> VembaSDK::apiKey() const {
  ApiKeyStore& store = apiKeyStore();
  const std::lock_guard lock(store.mutex);
  return store.apiKey;
}

void VembaSDK::setPrivacy(VembaPrivacy privacy) {
  ApiKeyStore& store = apiKeyStore();
  const std::lock_guard lock(store.mutex);
  store.privacy = std::move(privacy);
}

VembaPrivacy VembaSDK::privacy() const {
  ApiKeyStore& store = apiKeyStore();
  const std::lock_guard lock(store.mutex);
  return store.privacy;
}

void VembaSDK::setApplicationMuted(bool muted) {
  {
    ApiKeyStore& store = apiKeyStore();
    const std::lock_guard lock(store.mutex);
    store.muted = muted;
  }
  ads::VembaWebViewController::applicationMutedDidChange(muted);
}

bool VembaSDK::isApplicationMuted() const {
  ApiKeyStore& store = apiKeyStore();
  const std::lock_guard lock(store.mutex);
  return store.muted;
}

double VembaSDK::adLifetimeSeconds() const {
  ApiKeyStore& store = apiKeyStore();
  const std::lock_guard lock(store.mutex);
  return store.adLifetimeSeconds;
}

void VembaSDK::initialize(const VembaConfiguration& configuration,
                          const std::function<void(bool)>& completion) {
  {
    ApiKeyStore& store = apiKeyStore();
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

namespace ads {

void resetVembaSdkForTesting() {
  ApiKeyStore& store = apiKeyStore();
  const std::lock_guard lock(store.mutex);
  store.apiKey.reset();
  store.privacy = {};
  store.adLifetimeSeconds = 0;
  store.muted = false;
  AdWebViewPreparation::resetForTesting();
}

}  // namespace ads
}  // namespace vemba
