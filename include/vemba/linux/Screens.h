// How a Linux host hands its windows to the library and decides how URLs leave the application.
//
// A host shows an ad or presents a checkout "from" one of its windows: screenForWindow() gives
// the screen at the root of that window, for show(from) and present(checkout, from). Whatever
// the library presents appears inside that window, over its content.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "vemba/Export.h"
#include "vemba/ScreenHandle.h"

using GtkWindow = struct _GtkWindow;

namespace vemba {

// The screen at the root of `window`'s content: the same one for the same window, alive as long
// as the window. A screen presents one screen at a time, so while something is presented over
// the window, show and present from topScreenForWindow() instead. Null for a null window. Main
// thread only; GTK must be initialised.
VEMBA_EXPORT std::shared_ptr<ScreenHandle> screenForWindow(GtkWindow* window);

// The top screen of `window`: the last of the screens presented over it, or its root screen when
// nothing is. Showing an ad or presenting a checkout from it puts the new screen on top. Null
// for a null window. Main thread only; GTK must be initialised.
VEMBA_EXPORT std::shared_ptr<ScreenHandle> topScreenForWindow(GtkWindow* window);

// Receives each URL the library opens outside the application (an ad's "openURL", a checkout
// link the host's delegate leaves to the library): every URL that parses, whatever its scheme,
// and decides what to do with it. Runs on the main thread; what it throws is logged and stopped.
using UrlOpener = std::function<void(const std::string& url)>;

// Replaces the opener; an empty one restores the default, which opens only http, https, mailto
// and tel URLs, with the desktop's handler, without blocking (a log line for anything else).
// Thread-safe; takes effect for the next URL.
VEMBA_EXPORT void setUrlOpener(UrlOpener opener);

}  // namespace vemba
