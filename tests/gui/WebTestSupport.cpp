#include "WebTestSupport.h"

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <stdexcept>

#include "GtkViewBase.h"
#include "WebViewFactory.h"
#include "vemba/linux/WebViews.h"

namespace vemba::testing {
namespace {

std::string codeText(const platform::NavigationError& error) {
  return error.domain + " " + std::to_string(error.code);
}

std::string typeText(platform::NavigationType type) {
  switch (type) {
    case platform::NavigationType::linkActivated:
      return "link";
    case platform::NavigationType::formSubmitted:
      return "form";
    case platform::NavigationType::backForward:
      return "back-forward";
    case platform::NavigationType::reload:
      return "reload";
    case platform::NavigationType::formResubmitted:
      return "form-again";
    case platform::NavigationType::other:
      break;
  }
  return "other";
}

}  // namespace

bool displayAvailable() {
  static const bool available = gtk_init_check() != FALSE;
  return available;
}

platform::NavigationActionPolicy RecordingNavigationDelegate::decidePolicyForNavigationAction(
    platform::WebView& /*webView*/, const platform::NavigationAction& action) {
  events.push_back("action " + (action.url ? action.url->absoluteString() : "-") + " " +
                   typeText(action.navigationType) + " " +
                   (action.hasTargetFrame ? "target" : "no-target"));
  return cancelAction && cancelAction(action) ? platform::NavigationActionPolicy::cancel
                                              : platform::NavigationActionPolicy::allow;
}

platform::NavigationResponsePolicy RecordingNavigationDelegate::decidePolicyForNavigationResponse(
    platform::WebView& /*webView*/, const platform::NavigationResponse& response) {
  events.push_back("response " +
                   (response.statusCode ? std::to_string(*response.statusCode) : "-") + " " +
                   (response.isForMainFrame ? "main" : "sub"));
  return cancelResponse && cancelResponse(response) ? platform::NavigationResponsePolicy::cancel
                                                    : platform::NavigationResponsePolicy::allow;
}

void RecordingNavigationDelegate::didStartProvisionalNavigation(platform::WebView& /*webView*/) {
  events.emplace_back("start");
}

void RecordingNavigationDelegate::didFailProvisionalNavigation(
    platform::WebView& /*webView*/, const platform::NavigationError& error) {
  events.push_back("fail-provisional " + codeText(error));
  errors.push_back(error);
  countEnd();
}

void RecordingNavigationDelegate::didFinishNavigation(platform::WebView& /*webView*/) {
  events.emplace_back("finish");
  countEnd();
}

void RecordingNavigationDelegate::countEnd() {
  ++ends;
  if (onEnd) {
    onEnd();
  }
}

void RecordingNavigationDelegate::didFailNavigation(platform::WebView& /*webView*/,
                                                    const platform::NavigationError& error) {
  events.push_back("fail " + codeText(error));
  errors.push_back(error);
  countEnd();
}

void RecordingMessageHandler::userContentControllerDidReceive(
    platform::UserContentController& /*controller*/, const platform::ScriptMessage& message) {
  messages.push_back(message);
}

void WindowCloser::operator()(GtkWindow* window) const {
  gtk_window_set_child(window, nullptr);
  gtk_window_destroy(window);
  g_object_unref(window);
}

TestWebView makeWebView(std::optional<std::string> applicationName) {
  setEphemeralWebViews(true);
  TestWebView made;
  made.controller = linux_platform::createUserContentController();
  platform::WebViewConfiguration configuration;
  configuration.userContentController = made.controller;
  configuration.applicationNameForUserAgent = std::move(applicationName);
  made.view = linux_platform::createWebView(platform::Rect{}, configuration);
  made.delegate = std::make_shared<RecordingNavigationDelegate>();
  made.view->setNavigationDelegate(made.delegate);
  made.window.reset(GTK_WINDOW(g_object_ref_sink(gtk_window_new())));
  gtk_window_set_default_size(made.window.get(), 480, 640);
  GtkWidget* widget = linux_platform::gtkWidgetOf(*made.view);
  gtk_widget_set_hexpand(widget, TRUE);
  gtk_widget_set_vexpand(widget, TRUE);
  gtk_window_set_child(made.window.get(), widget);
  gtk_window_present(made.window.get());
  return made;
}

bool TestWebView::loadAndWait(const platform::WebRequest& request) {
  const std::size_t before = delegate->ends;
  view->load(request);
  return runMainLoopUntil([&] { return delegate->ends > before; });
}

platform::WebRequest requestFor(const std::string& url, std::chrono::milliseconds timeout) {
  const std::optional<Url> parsed = Url::parse(url);
  if (!parsed) {
    throw std::invalid_argument("not a URL: " + url);
  }
  platform::WebRequest request{*parsed, {}, platform::CachePolicy::useProtocolCachePolicy, timeout};
  return request;
}

}  // namespace vemba::testing
