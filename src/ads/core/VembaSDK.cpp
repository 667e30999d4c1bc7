#include "vemba/ads/VembaSDK.h"

#include "ads/core/UserAgentFetcher.h"
#include "ads/core/VembaLogger.h"
#include "ads/core/VembaSDKForTesting.h"
#include "ads/formats/AdWebViewPreparation.h"
#include "ads/formats/VembaWebViewController.h"
#include "common/MainThread.h"
#include "common/ThreadSafety.h"

namespace vemba {
namespace {

// The entry point's state: the key of the last initialize() and the host's privacy signals, read
// from any thread. Created on first use and never destroyed, like the entry point itself.
struct ApiKeyStore {
  Mutex mutex;
  std::optional<std::string> apiKey VEMBA_GUARDED_BY(mutex);
  VembaPrivacy privacy VEMBA_GUARDED_BY(mutex);
  double adLifetimeSeconds VEMBA_GUARDED_BY(mutex) = 0;
  bool muted VEMBA_GUARDED_BY(mutex) = false;
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
  const MutexLock lock(store.mutex);
  return store.apiKey;
}

void VembaSDK::setPrivacy(VembaPrivacy privacy) {
  ApiKeyStore& store = apiKeyStore();
  const MutexLock lock(store.mutex);
  store.privacy = std::move(privacy);
}

VembaPrivacy VembaSDK::privacy() const {
  ApiKeyStore& store = apiKeyStore();
  const MutexLock lock(store.mutex);
  return store.privacy;
}

void VembaSDK::setApplicationMuted(bool muted) {
  VEMBA_ASSERT_MAIN_THREAD();
  {
    ApiKeyStore& store = apiKeyStore();
    const MutexLock lock(store.mutex);
    store.muted = muted;
  }
  ads::VembaWebViewController::applicationMutedDidChange(muted);
}

bool VembaSDK::isApplicationMuted() const {
  VEMBA_ASSERT_MAIN_THREAD();
  ApiKeyStore& store = apiKeyStore();
  const MutexLock lock(store.mutex);
  return store.muted;
}

double VembaSDK::adLifetimeSeconds() const {
  ApiKeyStore& store = apiKeyStore();
  const MutexLock lock(store.mutex);
  return store.adLifetimeSeconds;
}

void VembaSDK::initialize(const VembaConfiguration& configuration,
                          const std::function<void(bool)>& completion) {
  VEMBA_ASSERT_MAIN_THREAD();
  {
    ApiKeyStore& store = apiKeyStore();
    const MutexLock lock(store.mutex);
    store.apiKey = configuration.apiKey;
    store.adLifetimeSeconds = configuration.adLifetimeSeconds;
  }
  VembaLogger::log(std::string(log_message::kInitializing) + configuration.apiKey);
  // The callback owns its copy of the completion: it captures nothing of this frame.
  UserAgentFetcher::shared().fetch([completion](const std::string& userAgent) {
    VembaLogger::log(std::string(log_message::kUserAgentPrewarmed) + userAgent);
    if (completion) {
      completion(true);
    }
  });
}

namespace ads {

void resetVembaSdkForTesting() {
  ApiKeyStore& store = apiKeyStore();
  const MutexLock lock(store.mutex);
  store.apiKey.reset();
  store.privacy = {};
  store.adLifetimeSeconds = 0;
  store.muted = false;
  AdWebViewPreparation::resetForTesting();
}

}  // namespace ads
}  // namespace vemba
