// How a Linux host hands its windows to the library and decides how URLs leave the application.
//
// A host shows an ad or presents a checkout "from" one of its windows: screenForWindow() gives
// the screen at the root of that window, for show(from) and present(checkout, from). Whatever
// the library presents appears inside that window, over its content.
#pragma once

#include <functional>
#include <memory>
#include <string>

using GtkWindow = struct _GtkWindow;

namespace vemba {

namespace platform {
class Screen;
}  // namespace platform

// The screen at the root of `window`'s content: the same one for the same window, alive as long
// as the window. Null for a null window. Main thread only; GTK must be initialised.
std::shared_ptr<platform::Screen> screenForWindow(GtkWindow* window);

// Receives each URL the library opens outside the application (http, https, mailto and tel only;
// other schemes never reach it). Runs on the main thread.
using UrlOpener = std::function<void(const std::string& url)>;

// Replaces the opener; an empty one restores the default, which launches the desktop's handler
// for the URL. Thread-safe; takes effect for the next URL.
void setUrlOpener(UrlOpener opener);

}  // namespace vemba
