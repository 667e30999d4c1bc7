// Where the GTK user-interface factory gets its web views: the WebKitGTK half of the Linux
// backend. Main thread only; GTK must be initialised.
#pragma once

#include <functional>
#include <memory>

#include "platform/Geometry.h"
#include "platform/WebView.h"

namespace vemba::linux_platform {

std::shared_ptr<platform::UserContentController> createUserContentController();
std::shared_ptr<platform::WebView> createWebView(
    platform::Rect frame, const platform::WebViewConfiguration& configuration);
// Keeps one web process running for the next web view made with usesPreparedWebView (see
// WarmWebView.h); `lost` runs if that process dies before a view takes it or it is released.
void prepareWebView(std::function<void()> lost);
// Ends what prepareWebView() started, if no web view has taken it.
void releasePreparedWebView();

}  // namespace vemba::linux_platform
