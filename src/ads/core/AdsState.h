// The ad half's process-wide state: what the host gave the entry point, the user-agent cache, the
// bookkeeping of the readied ad web view and the ad pages alive.
//
// Owner: the process, through state(); created on first use (thread-safe) and never destroyed at
// exit. Members follow their own thread contracts. Tests alone replace it, through
// resetVembaSdkForTesting() (VembaSDKForTesting.h).
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "ads/core/UserAgentFetcher.h"
#include "ads/formats/AdWebViewPreparation.h"
#include "common/ThreadSafety.h"
#include "vemba/ads/VembaPrivacy.h"

namespace vemba::ads {

class VembaWebViewController;

struct AdsState {
  // What initialize() and the setters of VembaSDK stored; read from any thread, under `mutex`.
  struct Sdk {
    Mutex mutex;
    std::optional<std::string> apiKey VEMBA_GUARDED_BY(mutex);
    VembaPrivacy privacy VEMBA_GUARDED_BY(mutex);
    double adLifetimeSeconds VEMBA_GUARDED_BY(mutex) = 0;
    bool muted VEMBA_GUARDED_BY(mutex) = false;
  };

  Sdk sdk;
  UserAgentFetcher userAgent;
  // Main thread only (see AdWebViewPreparation.h).
  const std::shared_ptr<WebViewPreparation> webViewPreparation =
      std::make_shared<WebViewPreparation>();
  // The ad page controllers made so far (expired ones dropped as new ones come), so that a change
  // of the application's muting reaches every page. Main thread only.
  std::vector<std::weak_ptr<VembaWebViewController>> liveControllers;
};

AdsState& state();

}  // namespace vemba::ads
