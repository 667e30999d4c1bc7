#include "WarmWebView.h"

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
};

Warm& warm() {
  static Warm value;
  return value;
}

}  // namespace

void prepareWebView() {
  Warm& kept = warm();
  const bool ephemeral = ephemeralWebViews();
  if (kept.view != nullptr) {
    if (kept.ephemeral == ephemeral) {
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
}

WebKitWebView* takeWarmWebView(bool ephemeral) {
  Warm& kept = warm();
  if (kept.view != nullptr && kept.ephemeral != ephemeral) {
    releasePreparedWebView();  // of no use to this view, and it was the one asked for
  }
  return std::exchange(kept.view, nullptr);
}

void releasePreparedWebView() {
  Warm& kept = warm();
  if (kept.view == nullptr) {
    return;
  }
  // Without this the web process outlives the view.
  webkit_web_view_terminate_web_process(kept.view);
  g_clear_object(&kept.view);
}

}  // namespace vemba::linux_platform
