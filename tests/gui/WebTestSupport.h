// Helpers for the web view tests on the real WebKitGTK backend: a navigation delegate and a
// message handler that record what the core would see, and a web view shown in a window. Main
// thread only.
#pragma once

#include <gtk/gtk.h>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "MainLoop.h"
#include "platform/WebView.h"

namespace vemba::tests {

// True when GTK could open the display (the tests that need one skip otherwise).
bool displayAvailable();

// Records every delegate call as one line: "action <url> <type> target|no-target",
// "start", "response <status> main|sub", "finish", "fail-provisional <domain> <code>",
// "fail <domain> <code>". Cancels the actions and responses the test tells it to.
class RecordingNavigationDelegate final : public platform::NavigationDelegate {
 public:
  platform::NavigationActionPolicy decidePolicyForNavigationAction(
      platform::WebView& /*webView*/, const platform::NavigationAction& action) override {
    events.push_back("action " + (action.url ? action.url->absoluteString() : "-") + " " +
                     typeText(action.navigationType) + " " +
                     (action.hasTargetFrame ? "target" : "no-target"));
    return cancelAction && cancelAction(action) ? platform::NavigationActionPolicy::cancel
                                                : platform::NavigationActionPolicy::allow;
  }
  platform::NavigationResponsePolicy decidePolicyForNavigationResponse(
      platform::WebView& /*webView*/, const platform::NavigationResponse& response) override {
    events.push_back("response " +
                     (response.statusCode ? std::to_string(*response.statusCode) : "-") + " " +
                     (response.isForMainFrame ? "main" : "sub"));
    return cancelResponse && cancelResponse(response) ? platform::NavigationResponsePolicy::cancel
                                                      : platform::NavigationResponsePolicy::allow;
  }
  void didStartProvisionalNavigation(platform::WebView& /*webView*/) override {
    events.emplace_back("start");
  }
  void didFailProvisionalNavigation(platform::WebView& /*webView*/,
                                    const platform::NavigationError& error) override {
    end("fail-provisional " + error.domain + " " + std::to_string(error.code));
  }
  void didFinishNavigation(platform::WebView& /*webView*/) override { end("finish"); }
  void didFailNavigation(platform::WebView& /*webView*/,
                         const platform::NavigationError& error) override {
    end("fail " + error.domain + " " + std::to_string(error.code));
  }

  std::vector<std::string> events;
  std::size_t ends = 0;  // loads that finished or failed
  std::function<bool(const platform::NavigationAction&)> cancelAction;
  std::function<bool(const platform::NavigationResponse&)> cancelResponse;
  // Runs inside didFinishNavigation / didFail…, after recording (to drop the view, say).
  std::function<void()> onEnd;

 private:
  static std::string typeText(platform::NavigationType type);
  void end(std::string event) {
    events.push_back(std::move(event));
    ++ends;
    if (onEnd) {
      onEnd();
    }
  }
};

class RecordingMessageHandler final : public platform::ScriptMessageHandler {
 public:
  void userContentControllerDidReceive(platform::UserContentController& /*controller*/,
                                       const platform::ScriptMessage& message) override {
    messages.push_back(message);
  }
  std::vector<platform::ScriptMessage> messages;
};

// Closes a test's window: takes the view out of it, then destroys it.
struct WindowCloser {
  void operator()(GtkWindow* window) const;
};

// A web view from the backend's factory with its own controller, in an ephemeral session, shown
// in its own window (declared last, so the window goes before the view).
struct TestWebView {
  std::shared_ptr<platform::UserContentController> controller;
  std::shared_ptr<platform::WebView> view;
  std::shared_ptr<RecordingNavigationDelegate> delegate;
  std::unique_ptr<GtkWindow, WindowCloser> window;  // 480 × 640, showing the view

  // Loads `request` and runs the main loop until the load has ended (once more than before).
  bool loadAndWait(const platform::WebRequest& request);
};
TestWebView makeWebView();

// A request for `url` (which must parse) with a time-out.
platform::WebRequest requestFor(const std::string& url,
                                std::chrono::milliseconds timeout = std::chrono::seconds(20));

}  // namespace vemba::tests
