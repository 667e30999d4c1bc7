// At most one hidden, unparented WebKitWebView kept (by prepareWebView() of WebViewFactory.h) so
// that its web process is already running when the next ad view is made: that view is created
// related to it and shares the process, and the warm view is dropped as soon as the new view's
// first load has committed or failed (or the new view goes first), so the process then lives only
// as the new view's and ends with it.
//
// The warm view loads about:blank (no network request) in the network session the consuming view
// would get anyway, has no script-message handler, and is never placed in a window; nothing a
// page, the network or the core sees changes. If its process dies while it is kept, it is dropped
// and the `lost` given to prepareWebView() runs: the next view starts a process of its own. Main
// thread only; process-wide; GTK initialised.
#pragma once

#include <webkit/webkit.h>

namespace vemba::linux_platform {

// Hands over the kept warm view (one strong reference) if its session has the same persistence
// as `ephemeral` asks for; null, keeping nothing, otherwise.
WebKitWebView* takeWarmWebView(bool ephemeral);

}  // namespace vemba::linux_platform
