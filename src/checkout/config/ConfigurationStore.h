// The storage behind the global checkout configuration and the switch beside it. The checkout
// entry points write through it and then run the change hook; nothing here runs that hook.
//
// Owner: CheckoutState (one per process, recreated only by the tests' reset). Thread-safe: the
// record is guarded by a lock so that a first log line written from a network thread can read it;
// it is meant to be written on the main thread.
#pragma once

#include <atomic>
#include <optional>

#include "common/ThreadSafety.h"
#include "vemba/checkout/Configuration.h"

namespace vemba::checkout {

class ConfigurationStore {
 public:
  // A copy of the record, made with the defaults on the first read (so the title is looked up in
  // the host bundle of the platform installed then).
  Configuration get() const;
  // Replaces the record.
  void replace(Configuration replacement);

  // Whether a configuration change discards the preloaded checkout page; starts true, and goes to
  // false for good once a declarative checkout sheet is made.
  bool invalidateOnConfigurationChange() const { return invalidateOnChange_.load(); }
  void setInvalidateOnConfigurationChange(bool value) { invalidateOnChange_ = value; }

 private:
  mutable Mutex mutex_;
  mutable std::optional<Configuration> record_ VEMBA_GUARDED_BY(mutex_);
  std::atomic<bool> invalidateOnChange_{true};
};

}  // namespace vemba::checkout
