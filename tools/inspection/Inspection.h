// What the project's own tools (the demo, the inspector) read of the library's screens beyond the
// public API: the screen presented over another, whether a screen's page has loaded, the ad's
// close button, and a picture of a window. A host has no use for these; a tool that shows or
// checks what the library drew does.
//
// Main thread only; GTK must be initialised. Every function takes the handles the public API
// gives (null or a handle the library did not make counts as no screen).
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "vemba/ScreenHandle.h"

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

// Saves `window`, as drawn, to a PNG file at `path`; false when it could not.
bool saveWindowPng(GtkWindow* window, const std::string& path);

}  // namespace vemba::inspection
