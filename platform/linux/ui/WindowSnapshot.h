// A PNG of a window as it is drawn now, for tools and tests. Main thread only; runs the main
// loop (for at most `wait`) until GTK has drawn the window's current content.
#pragma once

#include <chrono>
#include <string>

using GtkWindow = struct _GtkWindow;

namespace vemba::linux_platform {

// False when the window is not realised, nothing was rendered, or the file cannot be written.
bool saveWindowPng(GtkWindow* window, const std::string& path,
                   std::chrono::milliseconds wait = std::chrono::milliseconds(2000));

}  // namespace vemba::linux_platform
