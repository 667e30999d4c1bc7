#include "WarmWebView.h"

#include <functional>
#include <utility>

#include "WebViewDriver.h"
#include "WebViewFactory.h"
#include "vemba/linux/WebViews.h"

namespace vemba::linux_platform {
namespace {

// An empty document with no URL of its own: starting it launches the web process and sends
// nothing to the network.
constexpr const char* kBlankPage = "about:blank";

struct Warm {
  WebKitWebView* view = nullptr;  // one strong reference while kept
  bool ephemeral = false;
  gulong terminatedHandler = 0;  // on `view`, while kept
  std::function<void()> lost;    // what prepareWebView() was asked to run if it dies
};

Warm& warm() {
  static Warm value;
  return value;
}

// Hands the kept view over (null when none), no longer watching it.
WebKitWebView* unkeep() {
  Warm& kept = warm();
  if (kept.view != nullptr && kept.terminatedHandler != 0) {
    g_signal_handler_disconnect(kept.view, kept.terminatedHandler);
  }
  kept.terminatedHandler = 0;
  kept.lost = nullptr;
  return std::exchange(kept.view, nullptr);
}

// The kept view's process died: a view made related to it would not start in a running process,
// so it is dropped, and the core hears that nothing is readied any more.
void onWarmProcessTerminated(WebKitWebView* /*view*/, WebKitWebProcessTerminationReason /*reason*/,
                             gpointer /*data*/) {
  const std::function<void()> lost = std::move(warm().lost);
  // Released once WebKit's emission of this signal is over, not under it.
  g_idle_add(
      +[](gpointer dead) {
        g_object_unref(dead);
        return G_SOURCE_REMOVE;
      },
      unkeep());
  if (lost) {
    lost();
  }
}

}  // namespace

void prepareWebView(std::function<void()> lost) {
  Warm& kept = warm();
  const bool ephemeral = ephemeralWebViews();
  if (kept.view != nullptr) {
    if (kept.ephemeral == ephemeral) {
      kept.lost = std::move(lost);
      return;
    }
    releasePreparedWebView();  // kept for the other kind of session: no view would take it
  }
  WebKitNetworkSession* session = newNetworkSession(ephemeral);
  auto* view =
      WEBKIT_WEB_VIEW(g_object_new(WEBKIT_TYPE_WEB_VIEW, "network-session", session, nullptr));
  g_object_ref_sink(view);
  g_object_unref(session);
  webkit_web_view_load_uri(view, kBlankPage);
  kept.view = view;
  kept.ephemeral = ephemeral;
  kept.lost = std::move(lost);
  kept.terminatedHandler = g_signal_connect(view, "web-process-terminated",
                                            G_CALLBACK(onWarmProcessTerminated), nullptr);
}

WebKitWebView* takeWarmWebView(bool ephemeral) {
  Warm& kept = warm();
  if (kept.view != nullptr && kept.ephemeral != ephemeral) {
    releasePreparedWebView();  // of no use to this view, and it was the one asked for
  }
  return unkeep();
}

void releasePreparedWebView() {
  WebKitWebView* view = unkeep();
  if (view == nullptr) {
    return;
  }
  // Without this the web process outlives the view (no longer watched: this end is no loss).
  webkit_web_view_terminate_web_process(view);
  g_clear_object(&view);
}

}  // namespace vemba::linux_platform
