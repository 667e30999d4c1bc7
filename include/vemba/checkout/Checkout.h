// The checkout half's entry points: configure the global configuration, preload a checkout page,
// present a checkout sheet, and throw the preloaded page away.
//
// Contract: main thread only. Every write of the configuration through these operations (or a
// CheckoutConfigurable) runs the change hook once: unless a CheckoutSheet has been made, the
// preloaded page is dropped; then the shared logger takes the configuration's logLevel.
#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "vemba/Export.h"
#include "vemba/ScreenHandle.h"
#include "vemba/Url.h"
#include "vemba/checkout/CheckoutDelegate.h"
#include "vemba/checkout/CheckoutViewController.h"
#include "vemba/checkout/Configuration.h"
#include "vemba/checkout/MetaData.h"

namespace vemba::checkout {

// Replaces the global configuration, then runs the change hook.
VEMBA_EXPORT void setConfiguration(Configuration replacement);
// Lets `modify` change the global configuration in place, then runs the change hook once.
VEMBA_EXPORT void configure(const std::function<void(Configuration&)>& modify);

// When preloading is enabled, loads `checkout` ahead of time (marked as a prefetch) in the cached
// web view that a later present() of the same URL reuses for up to 300 seconds. Nothing when
// preloading is disabled or the platform has no display.
VEMBA_EXPORT void preload(const Url& checkout);

// Makes a checkout sheet for `checkout`, presents it from `from` (animated) and returns it. Null,
// with an error line in the log, when the platform has no display or `from` is null.
VEMBA_EXPORT std::shared_ptr<CheckoutViewController> present(
    const Url& checkout, std::shared_ptr<ScreenHandle> from,
    std::weak_ptr<CheckoutDelegate> delegate = {});
// The same, for a checkout entered through `entryPoint` (cached apart, announced to the page).
VEMBA_EXPORT std::shared_ptr<CheckoutViewController> present(
    const Url& checkout, std::shared_ptr<ScreenHandle> from,
    std::optional<MetaData::EntryPoint> entryPoint, std::weak_ptr<CheckoutDelegate> delegate = {});

// Throws the preloaded page away (its page loses the bridge).
VEMBA_EXPORT void invalidate();

// The kit's version, "3.4.0", is `version` in MetaData.h.

}  // namespace vemba::checkout
