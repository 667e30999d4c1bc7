// The WebKit side of one web view: builds the WebKitWebView from a seam configuration and turns
// its signals into the seam's calls: policy decisions answered synchronously by the navigation
// delegate, the load lifecycle in the order NavigationDelegate documents, URL and progress
// observers (told a main-loop turn after a change, of the settled value), the request time-out, and
// trust of certificates the SSL_CERT_FILE bundle vouches for (a refused first attempt stays
// invisible to the core).
//
// Owner: the web view facade (GtkWebView) through std::shared_ptr; the facade calls shutdown()
// before it goes. The driver holds the facade weakly and locks it around every call into the
// core, so a delegate that drops the view during a callback is safe. Main thread only.
#pragma once

#include <gtk/gtk.h>
#include <webkit/webkit.h>

#include <functional>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

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
  // The colour drawn where the page draws nothing.
  void setPageBackgroundColor(platform::Color color);

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

 private:
  WebViewDriver(WebKitWebView* view, WebKitNetworkSession* session,
                std::shared_ptr<platform::UserContentController> controller, WebKitWebView* warm);
  // Drops the warm view this one was made related to, once this view has the shared process.
  void releaseWarmView();
  void connect(const char* signal, GCallback callback);
  void send(const platform::WebRequest& request);
  void cancelTimeout();
  void cancelUrlFlush();
  bool reissueTrusted(const char* uri, GTlsCertificate* certificate);
  void followUpPrefetch();

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

  // The request of the last load(), reissued as it was after its certificate was trusted.
  std::optional<platform::WebRequest> request_;
  guint timeoutSource_ = 0;
  bool requestStarted_ = false;  // the load of request_ has started (its FINISHED ends the timer)
  bool timedOut_ = false;        // the time-out stopped the load: its failure reads -1001
  bool abandoned_ = false;       // timed out before it started: its action is refused unasked

  // The navigation in flight.
  bool started_ = false;
  bool committed_ = false;
  bool failed_ = false;  // its failure was reported; its FINISHED stays silent
  GTlsCertificateFlags tlsErrors_ = static_cast<GTlsCertificateFlags>(0);

  // Reissues of the current load after a refused certificate that verified against the bundle.
  // More than one, because the session's new trust reaches WebKit's network process on its own
  // path, and a reissue that overtakes it would be refused again; the cap keeps a server whose
  // certificate keeps changing from looping.
  int trustReissues_ = 0;
  // A request reissued after its certificate was trusted: the refused attempt's FINISHED, and
  // the action decision and start of the reissue, are kept from the core.
  bool swallowFinish_ = false;
  bool swallowAction_ = false;
  bool swallowStart_ = false;
  int redirects_ = 0;  // redirects followed since the navigation started

  // The load of request_ carries "Sec-Purpose: prefetch": when the engine has finished it
  // without a failure, the same request follows without the mark (see followUpPrefetch()).
  bool prefetchFollowUp_ = false;
};

}  // namespace vemba::linux_platform
