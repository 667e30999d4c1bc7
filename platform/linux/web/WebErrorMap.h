// How a failed WebKitGTK navigation maps onto the seam's navigation errors: URL-loading codes
// (UrlErrorCode.h) for network, GIO, resolver, TLS and HTTP-library failures, and the web
// engine's own domain for policy failures. Pure functions: no I/O, no state; any thread.
#pragma once

#include <gio/gio.h>

#include "platform/WebView.h"

namespace vemba::linux_platform {

// The URL-loading code of a certificate that failed verification with `flags` (never 0).
int urlErrorCodeForTlsFlags(GTlsCertificateFlags flags);

// WebKit follows this many redirects of one navigation, then fails it with an error of its own
// that names no domain (measured with WebKitGTK 2.50).
inline constexpr int kEngineRedirectLimit = 20;

// The navigation error for a load that failed with the GLib error `domain`/`code`. `tlsFlags`
// are the certificate problems WebKit reported just before a TLS failure (0 when none);
// `redirects` the redirects the navigation had followed (an error of no known domain after
// kEngineRedirectLimit of them is the engine ending a redirect loop); the failing URL is handed
// on as it is. A cancellation after a refused certificate (`tlsFlags` not 0) reads as the refusal.
// Anything without a closer equivalent is UrlErrorCode::unknown.
platform::NavigationError navigationErrorFor(GQuark domain, int code, GTlsCertificateFlags tlsFlags,
                                             const char* failingUri, int redirects = 0);

}  // namespace vemba::linux_platform
