#include "vemba/ads/VembaSDK.h"

#include "ads/core/AdsState.h"
#include "ads/core/UserAgentFetcher.h"
#include "ads/core/VembaLogger.h"
#include "ads/formats/VembaWebViewController.h"
#include "common/MainThread.h"
#include "common/ThreadSafety.h"

namespace vemba {

VembaSDK& VembaSDK::shared() {
  static auto* const instance = new VembaSDK();
  return *instance;
}

std::optional<std::string> VembaSDK::apiKey() const {
  ads::AdsState::Sdk& store = ads::state().sdk;
  const MutexLock lock(store.mutex);
  return store.apiKey;
}

void VembaSDK::setPrivacy(VembaPrivacy privacy) {
  ads::AdsState::Sdk& store = ads::state().sdk;
  const MutexLock lock(store.mutex);
  store.privacy = std::move(privacy);
}

VembaPrivacy VembaSDK::privacy() const {
  ads::AdsState::Sdk& store = ads::state().sdk;
  const MutexLock lock(store.mutex);
  return store.privacy;
}

void VembaSDK::setApplicationMuted(bool muted) {
  VEMBA_ASSERT_MAIN_THREAD();
  {
    ads::AdsState::Sdk& store = ads::state().sdk;
    const MutexLock lock(store.mutex);
    store.muted = muted;
  }
  ads::VembaWebViewController::applicationMutedDidChange(muted);
}

bool VembaSDK::isApplicationMuted() const {
  VEMBA_ASSERT_MAIN_THREAD();
  ads::AdsState::Sdk& store = ads::state().sdk;
  const MutexLock lock(store.mutex);
  return store.muted;
}

double VembaSDK::adLifetimeSeconds() const {
  ads::AdsState::Sdk& store = ads::state().sdk;
  const MutexLock lock(store.mutex);
  return store.adLifetimeSeconds;
}

void VembaSDK::initialize(const VembaConfiguration& configuration,
                          const std::function<void(bool)>& completion) {
  VEMBA_ASSERT_MAIN_THREAD();
  {
    ads::AdsState::Sdk& store = ads::state().sdk;
    const MutexLock lock(store.mutex);
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
