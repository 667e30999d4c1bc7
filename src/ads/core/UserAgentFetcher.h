// The process-wide cache of the browser-style user agent sent in bid requests. The text is
// composed once from the device's model and system version and never refreshed.
// Owner: AdsState (shared() is its member); thread-safe.
#pragma once

#include <optional>
#include <string>

#include "common/ThreadSafety.h"

namespace vemba {

class UserAgentFetcher {
 public:
  // The process-wide cache, in the ad half's state.
  static UserAgentFetcher& shared();

  // The user agent, composed and cached by the first call.
  std::string userAgent();

  std::optional<std::string> cachedUserAgent() const;

  // The composition rule, for a model and a system version such as "17.4.1".
  static std::string compose(const std::string& model, const std::string& systemVersion);

 private:
  mutable Mutex mutex_;
  std::optional<std::string> cachedUserAgent_ VEMBA_GUARDED_BY(mutex_);
};

}  // namespace vemba
