// The WebKit side of one web view: builds the WebKitWebView from a seam configuration and turns
// its signals into the seam's calls: policy decisions answered synchronously by the navigation
// delegate, the load lifecycle in the order NavigationDelegate documents, URL and progress
// observers (told a main-loop turn after a change, of the settled value), the time-out of the
// document request, and trust of certificates the SSL_CERT_FILE bundle vouches for (a refused
// first attempt stays invisible to the core), and the death of the web content process (the view
// then shows its own background until a page commits again). What a navigation event means is
// decided by its
// NavigationMachine: the driver turns each signal into a plain event for it and carries out the
// effects it returns.
//
// Owner: the web view facade (GtkWebView) through std::shared_ptr; the facade calls shutdown()
// before it goes. The driver holds the facade weakly and locks it around every call into the
// core, so a delegate that drops the view during a callback is safe. Main thread only.
#pragma once

#include <gtk/gtk.h>
#include <webkit/webkit.h>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "NavigationMachine.h"
#include "ObserverList.h"
#include "platform/WebView.h"

namespace vemba::linux_platform {

// A new reference to the network session a web view of this persistence gets: a memory-only
// session of its own when `ephemeral`, else WebKit's default persistent one.
WebKitNetworkSession* newNetworkSession(bool ephemeral);

class GtkUserContentController;

class WebViewDriver final : public std::enable_shared_from_this<WebViewDriver> {
 public:
  // Throws std::logic_error when the configuration's controller was not made by this backend.
  static std::shared_ptr<WebViewDriver> create(const platform::WebViewConfiguration& configuration);
  ~WebViewDriver();
  WebViewDriver(const WebViewDriver&) = delete;
  WebViewDriver& operator=(const WebViewDriver&) = delete;

  // The WebKitWebView (the driver holds one reference until it is destroyed).
  GtkWidget* widget() const { return GTK_WIDGET(view_); }
  // Connects WebKit's signals; `owner` is the view handed to the navigation delegate.
  void attach(std::weak_ptr<platform::WebView> owner);
  // Disconnects everything, stops the time-out and ends the web process; idempotent.
  void shutdown();

  void load(const platform::WebRequest& request);
  std::optional<Url> url() const;
  double estimatedProgress() const;
  bool isLoading() const;
  void setNavigationDelegate(std::weak_ptr<platform::NavigationDelegate> delegate) {
    delegate_ = std::move(delegate);
  }
  platform::UserContentController& userContentController() const;
  std::unique_ptr<platform::Observation> observeUrl(
      std::function<void(const std::optional<Url>&)> observer);
  std::unique_ptr<platform::Observation> observeEstimatedProgress(
      std::function<void(double)> observer);
  void evaluateJavaScript(std::string_view script);
  void setScrollEnabled(bool enabled) { scrollEnabled_ = enabled; }
  void setAllowsBackForwardNavigationGestures(bool allows);
  void setMuted(bool muted) { webkit_web_view_set_is_muted(view_, muted ? TRUE : FALSE); }
  // The colour drawn where the page draws nothing.
  // What WebKit draws where the page draws nothing: the view's `color` until the view's first
  // page commits, then the page's canvas: white for an `opaque` view, `color` otherwise.
  void setBackground(platform::Color color, bool opaque);

  // WebKit's signals (called by the signal trampolines only).
  gboolean decidePolicy(WebKitPolicyDecision* decision, WebKitPolicyDecisionType type);
  void loadChanged(WebKitLoadEvent event);
  gboolean loadFailed(WebKitLoadEvent event, const char* uri, GError* error);
  gboolean loadFailedWithTlsErrors(const char* uri, GTlsCertificate* certificate,
                                   GTlsCertificateFlags errors);
  void uriChanged();
  void flushUrl();
  void progressChanged();
  gboolean scrolled() const { return scrollEnabled_ ? FALSE : TRUE; }
  void timeoutFired();
  void webProcessTerminated(WebKitWebProcessTerminationReason reason);

 private:
  WebViewDriver(WebKitWebView* view, WebKitNetworkSession* session,
                std::shared_ptr<platform::UserContentController> controller, WebKitWebView* warm);
  // What the delegate decides: true allows.
  using Ask = std::function<bool(platform::NavigationDelegate&, platform::WebView&)>;
  // Carries out the machine's `effects` in order. `decision` is the policy decision being made
  // (`ask` gives the delegate's answer to it); `certificate` and `host` what a trustCertificate
  // effect trusts. True when a decision was answered or a certificate trusted.
  bool execute(const std::vector<navigation::Effect>& effects,
               WebKitPolicyDecision* decision = nullptr, const Ask& ask = {},
               GTlsCertificate* certificate = nullptr, const std::string& host = {});
  // Drops the warm view this one was made related to, once this view has the shared process.
  void releaseWarmView();
  void applyBackground();
  void connect(const char* signal, GCallback callback);
  void send(const platform::WebRequest& request);
  void startTimeout(std::chrono::milliseconds timeout);
  void cancelTimeout();
  void cancelUrlFlush();

  WebKitWebView* view_;
  WebKitNetworkSession* session_;
  std::shared_ptr<platform::UserContentController> controller_;
  // The warm view whose web process this view started in (see WarmWebView.h), until this view's
  // first load commits or fails, or this view is shut down; then null.
  WebKitWebView* warm_;
  std::weak_ptr<platform::WebView> owner_;
  std::weak_ptr<platform::NavigationDelegate> delegate_;
  std::vector<gulong> signalIds_;
  GtkEventController* scrollBlocker_ = nullptr;
  bool scrollEnabled_ = true;
  bool shutDown_ = false;

  ObserverList<std::optional<Url>> urlObservers_;
  ObserverList<double> progressObservers_;
  std::optional<Url> notifiedUrl_;  // what URL observers were last told
  guint urlFlushSource_ = 0;

  NavigationMachine machine_;
  guint timeoutSource_ = 0;

  // See setBackground().
  GdkRGBA viewBackground_{1.0F, 1.0F, 1.0F, 1.0F};
  GdkRGBA canvas_{1.0F, 1.0F, 1.0F, 1.0F};
  bool pageCommitted_ = false;
};

}  // namespace vemba::linux_platform
