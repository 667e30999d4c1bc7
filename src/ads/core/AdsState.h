// The ad half's process-wide state: what the host gave the entry point, the user-agent cache and
// the bookkeeping of the readied ad web view.
//
// Owner: the process, through state(); created on first use (thread-safe) and never destroyed at
// exit. Members follow their own thread contracts. Tests alone replace it, through
// resetVembaSdkForTesting() (VembaSDKForTesting.h).
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "ads/core/UserAgentFetcher.h"
#include "ads/formats/AdWebViewPreparation.h"
#include "common/ThreadSafety.h"
#include "vemba/ads/VembaPrivacy.h"

namespace vemba::ads {

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
};

AdsState& state();

}  // namespace vemba::ads
