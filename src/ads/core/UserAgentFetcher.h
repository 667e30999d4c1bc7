// The process-wide cache of the browser-style user agent sent in bid requests. The text is
// composed once from the device's model and system version and never refreshed.
// Created once, never destroyed; thread-safe.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "common/ThreadSafety.h"

namespace vemba {

class UserAgentFetcher {
 public:
  static UserAgentFetcher& shared();

  // Calls `completion` exactly once, synchronously, before returning, with the user agent.
  void fetch(const std::function<void(const std::string&)>& completion);

  std::optional<std::string> cachedUserAgent() const;

  // The composition rule, for a model and a system version such as "17.4.1".
  static std::string compose(const std::string& model, const std::string& systemVersion);

  // Tests only: empty the cache.
  void resetForTesting();

 private:
  UserAgentFetcher() = default;
  mutable Mutex mutex_;
  std::optional<std::string> cachedUserAgent_ VEMBA_GUARDED_BY(mutex_);
};

}  // namespace vemba
