// The platform's web view, as far as the core uses it: configuration, loading a request, the
// current URL and estimated progress with observers, navigation policy decisions, the load
// lifecycle, script messages and script evaluation. Main thread only.
//
// Ownership: the core owns each web view it creates (a superview holds it too while it is in a
// view tree). The web view holds its navigation delegate weakly and its user content controller
// strongly; the controller holds its script-message handlers strongly.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/HttpClient.h"
#include "platform/ScriptEvaluator.h"
#include "platform/ScriptMessage.h"
#include "platform/View.h"
#include "platform/WebProcessTermination.h"
#include "vemba/Url.h"

namespace vemba::platform {

// The domain of the web engine's own errors (policy errors) and the codes the core meets.
inline constexpr std::string_view kWebKitErrorDomain = "WebKitErrorDomain";
namespace WebKitErrorCode {
inline constexpr int cannotShowURL = 101;
// A navigation the policy decision cancelled (for instance an ignored response).
inline constexpr int frameLoadInterrupted = 102;
}  // namespace WebKitErrorCode

struct WebViewConfiguration {
  // Where the page's script messages arrive; required (see Ui::createUserContentController()).
  std::shared_ptr<UserContentController> userContentController;
  bool allowsInlineMediaPlayback = false;
  // Cookies, storage and caches live only as long as the view (never on disk).
  bool nonPersistentDataStore = false;
  // Appended to the engine's own user agent (after one space).
  std::optional<std::string> applicationNameForUserAgent;
  // May start in what the last Ui::prepareWebView() readied, if the backend readied anything.
  // Changes how fast the view's first load can start, nothing the view or its pages show.
  bool usesPreparedWebView = false;
};

struct WebRequest {
  Url url;
  HttpHeaders headers;  // sent with the main document (kept across redirects)
  CachePolicy cachePolicy = CachePolicy::useProtocolCachePolicy;
  // The backend fails the navigation with UrlErrorCode::timedOut when the main document's response
  // has not begun by then; sub-resources have no time-out of their own.
  std::chrono::milliseconds timeout{std::chrono::seconds(60)};
};

enum class NavigationType {
  linkActivated,
  formSubmitted,
  backForward,
  reload,
  formResubmitted,
  other
};

struct NavigationAction {
  std::optional<Url> url;  // the request's URL; absent when the engine has none
  NavigationType navigationType = NavigationType::other;
  // False when the navigation targets no frame of this view (a link that opens a new window).
  bool hasTargetFrame = true;
};

struct NavigationResponse {
  std::optional<Url> url;
  // The HTTP status; absent when the response is not an HTTP response.
  std::optional<long> statusCode;
  bool isForMainFrame = true;
};

enum class NavigationActionPolicy { allow, cancel };
enum class NavigationResponsePolicy { allow, cancel };

// A failed navigation: a URL-loading code (domain kUrlErrorDomain, see UrlErrorCode.h) or a web
// engine code (domain kWebKitErrorDomain). Backends map their errors; the core describes them.
struct NavigationError {
  std::string domain;
  int code = 0;
  std::optional<std::string> failingUrl;

  friend bool operator==(const NavigationError&, const NavigationError&) = default;
};

class WebView;

// The order of calls for one navigation: decidePolicyForNavigationAction, then (when allowed)
// didStartProvisionalNavigation, decidePolicyForNavigationResponse, then didFinishNavigation
// or didFailNavigation; or didFailProvisionalNavigation before anything was committed.
// Redirects ask for the action policy again. The decisions are answered synchronously.
//
// webContentProcessDidTerminate() comes when the view's web content process ends while the view
// lives (never for the end that comes with the view's own): the page is gone, and the view shows
// its own background until a new load commits. A navigation in flight ends with that call, and
// no failure follows for it. The view keeps working: its next load starts a new process.
class NavigationDelegate {
 public:
  virtual ~NavigationDelegate() = default;
  virtual NavigationActionPolicy decidePolicyForNavigationAction(WebView& webView,
                                                                 const NavigationAction& action);
  virtual NavigationResponsePolicy decidePolicyForNavigationResponse(
      WebView& webView, const NavigationResponse& response);
  virtual void didStartProvisionalNavigation(WebView& /*webView*/) {}
  virtual void didFailProvisionalNavigation(WebView& /*webView*/, const NavigationError& /*e*/) {}
  virtual void didFinishNavigation(WebView& /*webView*/) {}
  virtual void didFailNavigation(WebView& /*webView*/, const NavigationError& /*error*/) {}
  virtual void webContentProcessDidTerminate(WebView& /*webView*/,
                                             WebProcessTermination /*reason*/) {}
};

inline NavigationActionPolicy NavigationDelegate::decidePolicyForNavigationAction(
    WebView& /*webView*/, const NavigationAction& /*action*/) {
  return NavigationActionPolicy::allow;
}

inline NavigationResponsePolicy NavigationDelegate::decidePolicyForNavigationResponse(
    WebView& /*webView*/, const NavigationResponse& /*response*/) {
  return NavigationResponsePolicy::allow;
}

// Stops an observation when invalidated or destroyed.
class Observation {
 public:
  virtual ~Observation() = default;
  virtual void invalidate() = 0;
};

class WebView : public View, public ScriptEvaluator {
 public:
  // Starts loading `request` in the main frame, replacing any load in progress.
  virtual void load(const WebRequest& request) = 0;
  // The URL of the current main-frame navigation or page (it changes when a load starts, on
  // redirects, and back after a failed provisional load); absent before the first load.
  virtual std::optional<Url> url() const = 0;
  // The fraction of the current load, from 0 to 1.
  virtual double estimatedProgress() const = 0;
  virtual bool isLoading() const = 0;

  virtual void setNavigationDelegate(std::weak_ptr<NavigationDelegate> delegate) = 0;
  // The configuration's controller.
  virtual UserContentController& userContentController() = 0;

  // `observer` runs with each new value, on the main thread, until the observation ends.
  virtual std::unique_ptr<Observation> observeUrl(
      std::function<void(const std::optional<Url>&)> observer) = 0;
  virtual std::unique_ptr<Observation> observeEstimatedProgress(
      std::function<void(double)> observer) = 0;

  virtual void setScrollEnabled(bool enabled) = 0;
  // The scroll view adds no content insets of its own (a phone's safe-area adjustment).
  virtual void setContentInsetAdjustmentNever() = 0;
  virtual void setAllowsBackForwardNavigationGestures(bool allows) = 0;
  // The colour shown beyond the page's edges when it is scrolled past them.
  virtual void setUnderPageBackgroundColor(Color color) = 0;
  // While muted, the page plays no sound (media already playing included).
  virtual void setMuted(bool muted) = 0;
};

}  // namespace vemba::platform
