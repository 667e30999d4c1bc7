// The widget of every web view the backend shows: a WebKitWebView that can stop drawing its page.
// After the page's web content process died, WebKit keeps drawing the last frame it had, a page
// that no longer answers; while told so, this widget draws only what GTK draws under any widget,
// its own CSS background (the view's background colour), and the page again once told.
//
// Owned like any WebKitWebView (a floating reference sunk by its owner). Main thread only.
#pragma once

#include <webkit/webkit.h>

namespace vemba::linux_platform {

// The widget's GType (a WebKitWebView subclass), registered on first use.
GType webViewWidgetType();
// Whether `view` draws its page (true when made); a change redraws it. Ignored for a web view not
// made with webViewWidgetType().
void setDrawsPage(WebKitWebView* view, bool drawsPage);

}  // namespace vemba::linux_platform
