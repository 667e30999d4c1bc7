#include "WebViewDriver.h"

#include <stdexcept>
#include <string>
#include <utility>

#include "GtkUserContentController.h"
#include "TlsTrust.h"
#include "WarmWebView.h"
#include "WebErrorMap.h"
#include "WebViewWidget.h"
#include "platform/UrlErrorCode.h"
#include "vemba/linux/WebViews.h"

namespace vemba::linux_platform {
namespace {

// The request headers that make WebKit's cache revalidate the page with the server instead of
// using a stored copy (WebKitGTK has no per-request cache policy).
constexpr const char* kCacheControlHeader = "Cache-Control";
constexpr const char* kPragmaHeader = "Pragma";
constexpr const char* kNoCache = "no-cache";
// What a signal connection, a timer or a controller knows of its driver: a weak reference.
struct DriverRef {
  std::weak_ptr<WebViewDriver> driver;
};

void freeDriverRef(gpointer data, GClosure* /*closure*/) {
  delete static_cast<DriverRef*>(data);
}

std::shared_ptr<WebViewDriver> lockDriver(gpointer data) {
  return static_cast<DriverRef*>(data)->driver.lock();
}

gboolean onDecidePolicy(WebKitWebView* /*view*/, WebKitPolicyDecision* decision,
                        WebKitPolicyDecisionType type, gpointer data) {
  const std::shared_ptr<WebViewDriver> driver = lockDriver(data);
  return driver ? driver->decidePolicy(decision, type) : FALSE;
}

void onLoadChanged(WebKitWebView* /*view*/, WebKitLoadEvent event, gpointer data) {
  if (const std::shared_ptr<WebViewDriver> driver = lockDriver(data)) {
    driver->loadChanged(event);
  }
}

gboolean onLoadFailed(WebKitWebView* /*view*/, WebKitLoadEvent event, gchar* uri, GError* error,
                      gpointer data) {
  const std::shared_ptr<WebViewDriver> driver = lockDriver(data);
  return driver ? driver->loadFailed(event, uri, error) : FALSE;
}

gboolean onLoadFailedWithTlsErrors(WebKitWebView* /*view*/, gchar* uri,
                                   GTlsCertificate* certificate, GTlsCertificateFlags errors,
                                   gpointer data) {
  const std::shared_ptr<WebViewDriver> driver = lockDriver(data);
  return driver ? driver->loadFailedWithTlsErrors(uri, certificate, errors) : FALSE;
}

void onUriChanged(GObject* /*object*/, GParamSpec* /*spec*/, gpointer data) {
  if (const std::shared_ptr<WebViewDriver> driver = lockDriver(data)) {
    driver->uriChanged();
  }
}

void onProgressChanged(GObject* /*object*/, GParamSpec* /*spec*/, gpointer data) {
  if (const std::shared_ptr<WebViewDriver> driver = lockDriver(data)) {
    driver->progressChanged();
  }
}

gboolean onScroll(GtkEventControllerScroll* /*controller*/, double /*dx*/, double /*dy*/,
                  gpointer data) {
  const std::shared_ptr<WebViewDriver> driver = lockDriver(data);
  return driver ? driver->scrolled() : FALSE;
}

void onWebProcessTerminated(WebKitWebView* /*view*/, WebKitWebProcessTerminationReason reason,
                            gpointer data) {
  if (const std::shared_ptr<WebViewDriver> driver = lockDriver(data)) {
    driver->webProcessTerminated(reason);
  }
}

gboolean onTimeout(gpointer data) {
  if (const std::shared_ptr<WebViewDriver> driver = lockDriver(data)) {
    driver->timeoutFired();
  }
  return G_SOURCE_REMOVE;
}

gboolean onUrlFlush(gpointer data) {
  if (const std::shared_ptr<WebViewDriver> driver = lockDriver(data)) {
    driver->flushUrl();
  }
  return G_SOURCE_REMOVE;
}

void freeSourceRef(gpointer data) {
  delete static_cast<DriverRef*>(data);
}

void onEvaluated(GObject* source, GAsyncResult* result, gpointer /*data*/) {
  GError* error = nullptr;
  JSCValue* value =
      webkit_web_view_evaluate_javascript_finish(WEBKIT_WEB_VIEW(source), result, &error);
  // The result and any script error are of no interest to the caller.
  g_clear_object(&value);
  g_clear_error(&error);
}

platform::NavigationType navigationTypeOf(WebKitNavigationType type) {
  switch (type) {
    case WEBKIT_NAVIGATION_TYPE_LINK_CLICKED:
      return platform::NavigationType::linkActivated;
    case WEBKIT_NAVIGATION_TYPE_FORM_SUBMITTED:
      return platform::NavigationType::formSubmitted;
    case WEBKIT_NAVIGATION_TYPE_BACK_FORWARD:
      return platform::NavigationType::backForward;
    case WEBKIT_NAVIGATION_TYPE_RELOAD:
      return platform::NavigationType::reload;
    case WEBKIT_NAVIGATION_TYPE_FORM_RESUBMITTED:
      return platform::NavigationType::formResubmitted;
    default:
      return platform::NavigationType::other;
  }
}

platform::WebProcessTermination terminationOf(WebKitWebProcessTerminationReason reason) {
  switch (reason) {
    case WEBKIT_WEB_PROCESS_EXCEEDED_MEMORY_LIMIT:
      return platform::WebProcessTermination::exceededMemoryLimit;
    case WEBKIT_WEB_PROCESS_TERMINATED_BY_API:
      return platform::WebProcessTermination::terminatedByApi;
    default:
      return platform::WebProcessTermination::crashed;
  }
}

std::optional<Url> urlOf(const char* uri) {
  if (uri == nullptr || *uri == '\0') {
    return std::nullopt;
  }
  return Url::parse(uri);
}

constexpr GdkRGBA kWhite{1.0F, 1.0F, 1.0F, 1.0F};

// `color` as WebKit draws it: the system background is the theme's base colour, the one the
// sheet around the view is drawn with (dark in a dark theme).
GdkRGBA rgbaOf(platform::Color color, GtkWidget* styled) {
  if (color.kind == platform::Color::Kind::systemBackground) {
    GdkRGBA base = kWhite;
    G_GNUC_BEGIN_IGNORE_DEPRECATIONS
    gtk_style_context_lookup_color(gtk_widget_get_style_context(styled), "theme_base_color", &base);
    G_GNUC_END_IGNORE_DEPRECATIONS
    return base;
  }
  return GdkRGBA{static_cast<float>(color.red), static_cast<float>(color.green),
                 static_cast<float>(color.blue), static_cast<float>(color.alpha)};
}

}  // namespace

WebKitNetworkSession* newNetworkSession(bool ephemeral) {
  return ephemeral ? webkit_network_session_new_ephemeral()
                   : WEBKIT_NETWORK_SESSION(g_object_ref(webkit_network_session_get_default()));
}

std::shared_ptr<WebViewDriver> WebViewDriver::create(
    const platform::WebViewConfiguration& configuration) {
  auto* controller =
      dynamic_cast<GtkUserContentController*>(configuration.userContentController.get());
  if (controller == nullptr) {
    throw std::logic_error("a web view configuration without this backend's content controller");
  }

  WebKitSettings* settings = webkit_settings_new();
  if (configuration.applicationNameForUserAgent) {
    const std::string agent = std::string(webkit_settings_get_user_agent(settings)) + " " +
                              *configuration.applicationNameForUserAgent;
    webkit_settings_set_user_agent(settings, agent.c_str());
  }
  webkit_settings_set_media_playback_allows_inline(
      settings, configuration.allowsInlineMediaPlayback ? TRUE : FALSE);
  webkit_settings_set_enable_back_forward_navigation_gestures(settings, FALSE);

  // A non-persistent view gets a session of its own that ends with it.
  const bool ephemeral = configuration.nonPersistentDataStore || ephemeralWebViews();
  WebKitWebView* warm = configuration.usesPreparedWebView ? takeWarmWebView(ephemeral) : nullptr;

  WebKitWebView* view = nullptr;
  WebKitNetworkSession* session = nullptr;
  if (warm != nullptr) {
    // Starts in the warm view's running web process, in its session (one of the same kind).
    view = WEBKIT_WEB_VIEW(g_object_new(webViewWidgetType(), "related-view", warm,
                                        "user-content-manager", controller->manager(), "settings",
                                        settings, nullptr));
    session = WEBKIT_NETWORK_SESSION(g_object_ref(webkit_web_view_get_network_session(view)));
  } else {
    session = newNetworkSession(ephemeral);
    view = WEBKIT_WEB_VIEW(g_object_new(webViewWidgetType(), "network-session", session,
                                        "user-content-manager", controller->manager(), "settings",
                                        settings, nullptr));
  }
  g_object_ref_sink(view);
  g_object_unref(settings);
  return std::shared_ptr<WebViewDriver>(
      new WebViewDriver(view, session, configuration.userContentController, warm));
}

WebViewDriver::WebViewDriver(WebKitWebView* view, WebKitNetworkSession* session,
                             std::shared_ptr<platform::UserContentController> controller,
                             WebKitWebView* warm)
    : view_(view),
      session_(session),
      controller_(std::move(controller)),
      warm_(warm),
      machine_(warm != nullptr) {}

WebViewDriver::~WebViewDriver() {
  shutdown();
  g_object_unref(view_);
  g_object_unref(session_);
}

void WebViewDriver::releaseWarmView() {
  // The process stays while this view uses it; ending it is this view's alone from now on.
  g_clear_object(&warm_);
}

void WebViewDriver::connect(const char* signal, GCallback callback) {
  signalIds_.push_back(g_signal_connect_data(view_, signal, callback,
                                             new DriverRef{weak_from_this()}, freeDriverRef,
                                             static_cast<GConnectFlags>(0)));
}

void WebViewDriver::attach(std::weak_ptr<platform::WebView> owner) {
  owner_ = std::move(owner);
  connect("decide-policy", G_CALLBACK(onDecidePolicy));
  connect("load-changed", G_CALLBACK(onLoadChanged));
  connect("load-failed", G_CALLBACK(onLoadFailed));
  connect("load-failed-with-tls-errors", G_CALLBACK(onLoadFailedWithTlsErrors));
  connect("notify::uri", G_CALLBACK(onUriChanged));
  connect("notify::estimated-load-progress", G_CALLBACK(onProgressChanged));
  connect("web-process-terminated", G_CALLBACK(onWebProcessTerminated));

  // Wheel and touchpad scrolling stop here, before the page sees them, while scrolling is off.
  scrollBlocker_ = gtk_event_controller_scroll_new(GTK_EVENT_CONTROLLER_SCROLL_BOTH_AXES);
  gtk_event_controller_set_propagation_phase(scrollBlocker_, GTK_PHASE_CAPTURE);
  g_signal_connect_data(scrollBlocker_, "scroll", G_CALLBACK(onScroll),
                        new DriverRef{weak_from_this()}, freeDriverRef,
                        static_cast<GConnectFlags>(0));
  gtk_widget_add_controller(GTK_WIDGET(view_), scrollBlocker_);
}

void WebViewDriver::shutdown() {
  if (shutDown_) {
    return;
  }
  shutDown_ = true;
  execute(machine_.feed(navigation::Release{}));
  cancelUrlFlush();
  for (const gulong id : signalIds_) {
    g_signal_handler_disconnect(view_, id);
  }
  signalIds_.clear();
  if (scrollBlocker_ != nullptr) {
    gtk_widget_remove_controller(GTK_WIDGET(view_), scrollBlocker_);
    scrollBlocker_ = nullptr;
  }
  // Without this the view's web process outlives the view. A warm view still sharing the process
  // went first (with the release above): the process would end under it too, and it is of no use
  // to anyone else.
  webkit_web_view_terminate_web_process(view_);
}

void WebViewDriver::load(const platform::WebRequest& request) {
  execute(machine_.feed(navigation::Load{request}));
}

void WebViewDriver::send(const platform::WebRequest& request) {
  WebKitURIRequest* uriRequest = webkit_uri_request_new(request.url.absoluteString().c_str());
  SoupMessageHeaders* headers = webkit_uri_request_get_http_headers(uriRequest);
  for (const auto& [name, value] : request.headers) {
    soup_message_headers_append(headers, name.c_str(), value.c_str());
  }
  if (request.cachePolicy == platform::CachePolicy::reloadIgnoringLocalCacheData) {
    soup_message_headers_replace(headers, kCacheControlHeader, kNoCache);
    soup_message_headers_replace(headers, kPragmaHeader, kNoCache);
  }
  webkit_web_view_load_request(view_, uriRequest);
  g_object_unref(uriRequest);
}

void WebViewDriver::startTimeout(std::chrono::milliseconds timeout) {
  cancelTimeout();
  timeoutSource_ = g_timeout_add_full(G_PRIORITY_DEFAULT, static_cast<guint>(timeout.count()),
                                      onTimeout, new DriverRef{weak_from_this()}, freeSourceRef);
}

void WebViewDriver::cancelTimeout() {
  if (timeoutSource_ != 0) {
    g_source_remove(timeoutSource_);
    timeoutSource_ = 0;
  }
}

void WebViewDriver::cancelUrlFlush() {
  if (urlFlushSource_ != 0) {
    g_source_remove(urlFlushSource_);
    urlFlushSource_ = 0;
  }
}

void WebViewDriver::timeoutFired() {
  timeoutSource_ = 0;
  execute(machine_.feed(navigation::TimeoutFired{}));
}

void WebViewDriver::webProcessTerminated(WebKitWebProcessTerminationReason reason) {
  if (!owner_.lock()) {
    return;
  }
  // The page is gone: until a new one commits, the view draws nothing but its own colour (WebKit
  // would go on drawing the dead page's last frame).
  pageCommitted_ = false;
  applyBackground();
  setDrawsPage(view_, false);
  execute(machine_.feed(navigation::Terminated{terminationOf(reason)}));
}

bool WebViewDriver::execute(const std::vector<navigation::Effect>& effects,
                            WebKitPolicyDecision* decision, const Ask& ask,
                            GTlsCertificate* certificate, const std::string& host) {
  using Kind = navigation::Effect::Kind;
  // Held for the whole list: a delegate may drop the view in any of the calls.
  const std::shared_ptr<platform::WebView> owner = owner_.lock();
  const std::shared_ptr<platform::NavigationDelegate> delegate = delegate_.lock();
  bool handled = false;
  for (const navigation::Effect& effect : effects) {
    switch (effect.kind) {
      case Kind::startTimer:
        startTimeout(effect.timeout);
        break;
      case Kind::cancelTimer:
        cancelTimeout();
        break;
      case Kind::send:
        send(*effect.request);
        break;
      case Kind::trustCertificate:
        webkit_network_session_allow_tls_certificate_for_host(session_, certificate, host.c_str());
        handled = true;
        break;
      case Kind::stopLoading:
        webkit_web_view_stop_loading(view_);
        break;
      case Kind::askDelegate:
      case Kind::allowUnasked:
      case Kind::refuseUnasked: {
        const bool allow =
            effect.kind == Kind::allowUnasked ||
            (effect.kind == Kind::askDelegate && (!delegate || !owner || ask(*delegate, *owner)));
        if (allow) {
          webkit_policy_decision_use(decision);
        } else {
          webkit_policy_decision_ignore(decision);
        }
        handled = true;
        break;
      }
      case Kind::reportStart:
        if (owner && delegate) {
          delegate->didStartProvisionalNavigation(*owner);
        }
        break;
      case Kind::reportFinish:
        if (owner && delegate) {
          delegate->didFinishNavigation(*owner);
        }
        break;
      case Kind::reportFailProvisional:
        if (owner && delegate) {
          delegate->didFailProvisionalNavigation(*owner, *effect.error);
        }
        break;
      case Kind::reportFail:
        if (owner && delegate) {
          delegate->didFailNavigation(*owner, *effect.error);
        }
        break;
      case Kind::releaseWarmView:
        releaseWarmView();
        break;
      case Kind::reportTerminated:
        if (owner && delegate) {
          delegate->webContentProcessDidTerminate(*owner, *effect.termination);
        }
        break;
    }
  }
  return handled;
}

std::optional<Url> WebViewDriver::url() const {
  return urlOf(webkit_web_view_get_uri(view_));
}

double WebViewDriver::estimatedProgress() const {
  return webkit_web_view_get_estimated_load_progress(view_);
}

bool WebViewDriver::isLoading() const {
  return webkit_web_view_is_loading(view_) != FALSE;
}

platform::UserContentController& WebViewDriver::userContentController() const {
  return *controller_;
}

std::unique_ptr<platform::Observation> WebViewDriver::observeUrl(
    std::function<void(const std::optional<Url>&)> observer) {
  return urlObservers_.add(std::move(observer));
}

std::unique_ptr<platform::Observation> WebViewDriver::observeEstimatedProgress(
    std::function<void(double)> observer) {
  return progressObservers_.add(std::move(observer));
}

void WebViewDriver::evaluateJavaScript(std::string_view script) {
  webkit_web_view_evaluate_javascript(view_, script.data(), static_cast<gssize>(script.size()),
                                      nullptr, nullptr, nullptr, onEvaluated, nullptr);
}

void WebViewDriver::setAllowsBackForwardNavigationGestures(bool allows) {
  webkit_settings_set_enable_back_forward_navigation_gestures(webkit_web_view_get_settings(view_),
                                                              allows ? TRUE : FALSE);
}

void WebViewDriver::setBackground(platform::Color color, bool opaque) {
  viewBackground_ = rgbaOf(color, GTK_WIDGET(view_));
  // An opaque view draws its pages on the web's white canvas; a transparent one lets its own
  // colour show under a page that has no background of its own.
  canvas_ = opaque ? kWhite : viewBackground_;
  applyBackground();
}

void WebViewDriver::applyBackground() {
  // Until the first page commits there is nothing to draw but the view's own colour.
  const GdkRGBA rgba = pageCommitted_ ? canvas_ : viewBackground_;
  webkit_web_view_set_background_color(view_, &rgba);
}

gboolean WebViewDriver::decidePolicy(WebKitPolicyDecision* decision,
                                     WebKitPolicyDecisionType type) {
  if (!owner_.lock()) {
    return FALSE;
  }
  if (type == WEBKIT_POLICY_DECISION_TYPE_NAVIGATION_ACTION ||
      type == WEBKIT_POLICY_DECISION_TYPE_NEW_WINDOW_ACTION) {
    const bool newWindow = type == WEBKIT_POLICY_DECISION_TYPE_NEW_WINDOW_ACTION;
    const Ask ask = [&](platform::NavigationDelegate& delegate, platform::WebView& owner) {
      WebKitNavigationAction* navigation = webkit_navigation_policy_decision_get_navigation_action(
          WEBKIT_NAVIGATION_POLICY_DECISION(decision));
      platform::NavigationAction action;
      action.url =
          urlOf(webkit_uri_request_get_uri(webkit_navigation_action_get_request(navigation)));
      action.navigationType =
          navigationTypeOf(webkit_navigation_action_get_navigation_type(navigation));
      action.hasTargetFrame = !newWindow;
      return delegate.decidePolicyForNavigationAction(owner, action) ==
             platform::NavigationActionPolicy::allow;
    };
    return execute(machine_.feed(navigation::ActionDecision{newWindow}), decision, ask) ? TRUE
                                                                                        : FALSE;
  }

  if (type == WEBKIT_POLICY_DECISION_TYPE_RESPONSE) {
    auto* responseDecision = WEBKIT_RESPONSE_POLICY_DECISION(decision);
    const bool mainDocument =
        webkit_response_policy_decision_is_main_frame_main_resource(responseDecision) != FALSE;
    const Ask ask = [&](platform::NavigationDelegate& delegate, platform::WebView& owner) {
      WebKitURIResponse* uriResponse =
          webkit_response_policy_decision_get_response(responseDecision);
      platform::NavigationResponse response;
      response.url = urlOf(webkit_uri_response_get_uri(uriResponse));
      // Only HTTP responses carry headers.
      if (webkit_uri_response_get_http_headers(uriResponse) != nullptr) {
        response.statusCode = static_cast<long>(webkit_uri_response_get_status_code(uriResponse));
      }
      response.isForMainFrame = mainDocument;
      return delegate.decidePolicyForNavigationResponse(owner, response) ==
             platform::NavigationResponsePolicy::allow;
    };
    return execute(machine_.feed(navigation::ResponseDecision{mainDocument}), decision, ask)
               ? TRUE
               : FALSE;
  }
  return FALSE;
}

void WebViewDriver::loadChanged(WebKitLoadEvent event) {
  if (!owner_.lock()) {
    return;
  }
  switch (event) {
    case WEBKIT_LOAD_STARTED:
      execute(machine_.feed(navigation::Started{}));
      return;
    case WEBKIT_LOAD_REDIRECTED:
      execute(machine_.feed(navigation::Redirected{}));
      return;
    case WEBKIT_LOAD_COMMITTED:
      if (!pageCommitted_) {
        pageCommitted_ = true;
        applyBackground();
        setDrawsPage(view_, true);
      }
      execute(machine_.feed(navigation::Committed{}));
      return;
    case WEBKIT_LOAD_FINISHED:
      execute(machine_.feed(navigation::Finished{}));
      return;
  }
}

gboolean WebViewDriver::loadFailed(WebKitLoadEvent event, const char* uri, GError* error) {
  if (!owner_.lock()) {
    return FALSE;
  }
  const std::vector<navigation::Effect> effects = machine_.feed(
      navigation::Failed{navigationErrorFor(error->domain, error->code,
                                            static_cast<GTlsCertificateFlags>(machine_.tlsErrors()),
                                            uri, machine_.redirects()),
                         event == WEBKIT_LOAD_COMMITTED});
  execute(effects);
  // Handled (while the view is live): the view keeps what it shows instead of WebKit's error
  // page.
  return effects.empty() ? FALSE : TRUE;
}

gboolean WebViewDriver::loadFailedWithTlsErrors(const char* uri, GTlsCertificate* certificate,
                                                GTlsCertificateFlags errors) {
  const std::optional<std::string> bundle = trustedBundlePath();
  const std::optional<Url> failing = urlOf(uri);
  const bool verified =
      bundle && failing && verifiesAgainstBundle(certificate, failing->host(), *bundle);
  // Trusted: the same request goes again. Refused: the load-failed that follows carries these
  // problems.
  return execute(machine_.feed(
                     navigation::TlsRefused{failing, verified, static_cast<unsigned>(errors)}),
                 nullptr, {}, certificate, failing ? failing->host() : std::string())
             ? TRUE
             : FALSE;
}

void WebViewDriver::uriChanged() {
  // WebKit moves the URI back while a refused certificate is being trusted and forward again
  // at the reissue, all in one dispatch: observers learn the settled value a turn later.
  if (urlFlushSource_ == 0) {
    urlFlushSource_ = g_idle_add_full(G_PRIORITY_DEFAULT, onUrlFlush,
                                      new DriverRef{weak_from_this()}, freeSourceRef);
  }
}

void WebViewDriver::flushUrl() {
  urlFlushSource_ = 0;
  const std::optional<Url> current = url();
  if (current == notifiedUrl_) {
    return;
  }
  notifiedUrl_ = current;
  if (const std::shared_ptr<platform::WebView> owner = owner_.lock()) {
    urlObservers_.notify(current);
  }
}

void WebViewDriver::progressChanged() {
  if (const std::shared_ptr<platform::WebView> owner = owner_.lock()) {
    progressObservers_.notify(estimatedProgress());
  }
}

}  // namespace vemba::linux_platform
