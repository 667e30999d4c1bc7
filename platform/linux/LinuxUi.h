// The Linux backend's whole user-interface factory: the GTK half (ui/GtkUi.h) with the web views
// of the WebKitGTK half (web/WebViewFactory.h). Made once, lazily, on the main thread by
// linuxUi(); lives for the process. Main thread only.
#pragma once

#include "platform/Ui.h"

namespace vemba::linux_platform {

// The process's user interface: starts GTK on the first call; null when there is no display.
platform::Ui* linuxUi();

}  // namespace vemba::linux_platform
