// A recording web view and user content controller. The fake loads nothing: load() records the
// request and starts a navigation to its URL; a test then plays the engine's part by firing the
// navigation callbacks, URL and progress changes and page messages, each delivered at once to
// the core (and answered synchronously where the core decides). Single-threaded.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "FakeView.h"
#include "platform/WebView.h"

namespace vemba::fake {

class FakeUserContentController final : public platform::UserContentController {
 public:
  struct Change {
    enum class Kind { added, removed };
    Kind kind = Kind::added;
    std::string name;
    friend bool operator==(const Change&, const Change&) = default;
  };

  void add(std::shared_ptr<platform::ScriptMessageHandler> handler, std::string_view name) override;
  void removeScriptMessageHandler(std::string_view name) override;

  bool hasHandler(std::string_view name) const;
  // The page posts `body` to the channel `name`: delivered to the handler registered under it.
  // Returns false (the page's call fails) when none is.
  bool post(std::string_view name,
            std::variant<std::string, platform::ScriptMessage::NonStringBody> body);

  std::vector<Change> changes;  // every add and remove that took effect, in order

 private:
  std::map<std::string, std::shared_ptr<platform::ScriptMessageHandler>, std::less<>> handlers_;
};

class FakeWebView final : public FakeViewImpl<platform::WebView>,
                          public std::enable_shared_from_this<FakeWebView> {
 public:
  explicit FakeWebView(platform::WebViewConfiguration made);

  // platform::WebView
  void load(const platform::WebRequest& request) override;
  std::optional<Url> url() const override { return url_; }
  double estimatedProgress() const override { return progress_; }
  bool isLoading() const override { return loading_; }
  void setNavigationDelegate(std::weak_ptr<platform::NavigationDelegate> delegate) override {
    delegate_ = std::move(delegate);
  }
  platform::UserContentController& userContentController() override;
  std::unique_ptr<platform::Observation> observeUrl(
      std::function<void(const std::optional<Url>&)> observer) override;
  std::unique_ptr<platform::Observation> observeEstimatedProgress(
      std::function<void(double)> observer) override;
  void setScrollEnabled(bool enabled) override { scrollEnabled = enabled; }
  void setContentInsetAdjustmentNever() override { contentInsetAdjustmentNever = true; }
  void setAllowsBackForwardNavigationGestures(bool allows) override {
    allowsBackForwardNavigationGestures = allows;
  }
  void setMuted(bool isMuted) override { muted = isMuted; }
  void setUnderPageBackgroundColor(platform::Color color) override {
    underPageBackgroundColor = color;
  }
  void evaluateJavaScript(std::string_view script) override { scripts.emplace_back(script); }

  // The engine's part. Each calls the navigation delegate (when it still exists) at once.
  platform::NavigationActionPolicy decidePolicyForNavigationAction(
      const platform::NavigationAction& action);
  platform::NavigationResponsePolicy decidePolicyForNavigationResponse(
      const platform::NavigationResponse& response);
  void startProvisionalNavigation();
  // Also moves the URL back to `revertTo` (the page shown before), as the engine does.
  void failProvisionalNavigation(const platform::NavigationError& error,
                                 std::optional<Url> revertTo = std::nullopt);
  void finishNavigation();
  void failNavigation(const platform::NavigationError& error);
  // The view's web content process dies: the page and its URL are gone and nothing is loading
  // (as with the engine, the navigation in flight ends here, with no failure of its own); then
  // the delegate hears why. The view stays usable: a later load() works as before.
  void terminateWebContentProcess(
      platform::WebProcessTermination reason = platform::WebProcessTermination::crashed);
  // Changes the current URL (notifying URL observers when it differs) or the load progress
  // (notifying progress observers).
  void changeUrl(std::optional<Url> url);
  void changeEstimatedProgress(double progress);
  // The page posts to a script-message channel (see FakeUserContentController::post).
  bool postMessage(std::string_view channel, std::string body);

  bool hasNavigationDelegate() const { return !delegate_.expired(); }
  std::size_t liveUrlObservers() const;
  std::size_t liveProgressObservers() const;

  const platform::WebViewConfiguration configuration;
  std::vector<platform::WebRequest> loads;
  std::vector<std::string> scripts;  // every evaluated script, in order
  bool scrollEnabled = true;
  bool contentInsetAdjustmentNever = false;
  bool allowsBackForwardNavigationGestures = false;
  std::optional<platform::Color> underPageBackgroundColor;
  bool muted = false;

 private:
  template <typename Value>
  struct Observers {
    struct Entry {
      std::function<void(Value)> callback;
      bool live = true;
    };
    std::vector<std::shared_ptr<Entry>> entries;
    void notify(Value value);
    std::size_t live() const;
  };

  std::optional<Url> url_;
  double progress_ = 0.0;
  bool loading_ = false;
  std::weak_ptr<platform::NavigationDelegate> delegate_;
  Observers<const std::optional<Url>&> urlObservers_;
  Observers<double> progressObservers_;
};

}  // namespace vemba::fake
