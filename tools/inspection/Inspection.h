// What the project's own tools (the demo, the inspector) read of the library beyond the public
// API: the screen presented over another, whether a screen's page has loaded, the close controls,
// a picture of a window, and the ad half's request, user agent and log lines and the checkout
// bridge's decoding, each produced by the library's own code. A host has no use for these; a tool
// that shows or checks what the library does has.
//
// Main thread only. The screen functions need GTK initialised and take the handles the public API
// gives (null or a handle the library did not make counts as no screen).
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "vemba/Expected.h"
#include "vemba/ScreenHandle.h"
#include "vemba/checkout/CheckoutViewController.h"

using GtkWindow = struct _GtkWindow;

namespace vemba::inspection {

// The screen `screen` presents; null when it presents none.
std::shared_ptr<ScreenHandle> presentedOver(const std::shared_ptr<ScreenHandle>& screen);

// Dismisses what `screen` presents (and everything above it), leaving `screen` itself; false when
// it presents nothing. `completion` runs once the dismissal has finished.
bool dismissPresentedOver(const std::shared_ptr<ScreenHandle>& screen,
                          std::function<void()> completion);

// Whether the page of `screen` has finished loading: the web view of an ad's screen, or of the
// page a checkout sheet shows.
bool pageLoaded(const std::shared_ptr<ScreenHandle>& screen);

// Presses the close button of an ad's screen as a click delivers it; false when it has none.
bool pressCloseButton(const std::shared_ptr<ScreenHandle>& screen);

// Presses the close item of a checkout sheet as a click delivers it; false when it has none.
bool pressCloseItem(const checkout::CheckoutViewController& sheet);

// Whether the checkout page of `sheet`, or with null the preloaded page in the cache, has loaded
// as the checkout counts it.
bool checkoutLoaded(const checkout::CheckoutViewController* sheet);

// Saves `window`, as drawn, to a PNG file at `path`; false when it could not.
bool saveWindowPng(GtkWindow* window, const std::string& path);

// Whether the platform can show windows (a display was found and GTK started).
bool displayAvailable();

// The ad half's log lines while `sink` is installed (the library itself writes none); nullptr
// stops them. The sink may be called from any thread.
void setAdLogSink(std::function<void(std::string_view line)> sink);

// The user agent the ad half sends.
std::string adUserAgent();

// The bid request body a load of this ad would send now, built by the exchange's own code with
// the current privacy signals; the reason when it cannot be encoded.
Expected<std::string, std::string> bidRequestBody(bool rewarded, const std::string& adUnitId,
                                                  double bidFloor);

// What the checkout's web view makes of one script message: the body as the page posted it (a
// string), or any other JSON value standing for a non-string body. One JSON object: the decoded
// event (or the decoding failure) and, where the web view would report one, its CheckoutError.
// The page's two contract violations end the process, as they do in the library.
std::string decodeCheckoutMessage(const std::optional<std::string>& stringBody,
                                  std::string_view otherBodyJson);

}  // namespace vemba::inspection
