// The storage behind the global checkout configuration and the module-level switches beside it.
// The checkout entry points write through these and then run the change hook; nothing here runs
// that hook.
//
// Contract: thread-safe (the record is guarded by a lock so that a first log line written from a
// network thread can read it); meant to be written on the main thread.
#pragma once

#include <functional>

#include "vemba/checkout/Configuration.h"

namespace vemba::checkout::detail {

// Replaces the global record.
void replaceConfiguration(Configuration replacement);
// Runs `modify` on a copy of the global record and stores the result (so `modify` may itself
// read configuration()).
void modifyConfiguration(const std::function<void(Configuration&)>& modify);

// Whether a configuration change discards the preloaded checkout page; starts true, and goes to
// false for good once a declarative checkout sheet is made.
bool invalidateOnConfigurationChange();
void setInvalidateOnConfigurationChange(bool value);

// Run on every write of Configuration::Preloading::enabled. The checkout web view installs here
// the clearing of its "preloading activated by client" flag; until something is installed the
// write has no side effect. `hook` must be callable from any thread that writes the field.
using PreloadingEnabledWriteHook = void (*)();
void setPreloadingEnabledWriteHook(PreloadingEnabledWriteHook hook);

// Tests only: the next configuration() creates the record afresh with the defaults (reading the
// then-installed platform), and invalidateOnConfigurationChange is true again.
void resetConfigurationForTesting();

}  // namespace vemba::checkout::detail
