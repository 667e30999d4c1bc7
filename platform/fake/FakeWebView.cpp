#include "FakeWebView.h"

#include <algorithm>
#include <stdexcept>

namespace vemba::fake {
namespace {

template <typename Entry>
class EntryObservation final : public platform::Observation {
 public:
  explicit EntryObservation(std::weak_ptr<Entry> entry) : entry_(std::move(entry)) {}
  ~EntryObservation() override { invalidate(); }
  void invalidate() override {
    if (const auto entry = entry_.lock()) {
      entry->live = false;
    }
  }

 private:
  std::weak_ptr<Entry> entry_;
};

}  // namespace

void FakeUserContentController::add(std::shared_ptr<platform::ScriptMessageHandler> handler,
                                    std::string_view name) {
  if (handlers_.find(name) != handlers_.end()) {
    return;
  }
  handlers_.emplace(std::string(name), std::move(handler));
  changes.push_back({Change::Kind::added, std::string(name)});
}

void FakeUserContentController::removeScriptMessageHandler(std::string_view name) {
  const auto it = handlers_.find(name);
  if (it == handlers_.end()) {
    return;
  }
  handlers_.erase(it);
  changes.push_back({Change::Kind::removed, std::string(name)});
}

bool FakeUserContentController::hasHandler(std::string_view name) const {
  return handlers_.find(name) != handlers_.end();
}

bool FakeUserContentController::post(
    std::string_view name, std::variant<std::string, platform::ScriptMessage::NonStringBody> body) {
  const auto it = handlers_.find(name);
  if (it == handlers_.end()) {
    return false;
  }
  const std::shared_ptr<platform::ScriptMessageHandler> handler = it->second;
  handler->userContentControllerDidReceive(*this, platform::ScriptMessage{std::string(name), body});
  return true;
}

template <typename Value>
void FakeWebView::Observers<Value>::notify(Value value) {
  // Observers added or ended while notifying are respected from the next change on.
  const std::vector<std::shared_ptr<Entry>> snapshot = entries;
  for (const auto& entry : snapshot) {
    if (entry->live) {
      entry->callback(value);
    }
  }
}

template <typename Value>
std::size_t FakeWebView::Observers<Value>::live() const {
  return static_cast<std::size_t>(
      std::count_if(entries.begin(), entries.end(), [](const auto& e) { return e->live; }));
}

FakeWebView::FakeWebView(platform::WebViewConfiguration made) : configuration(std::move(made)) {
  if (!configuration.userContentController) {
    throw std::logic_error("a web view configuration without a user content controller");
  }
}

void FakeWebView::load(const platform::WebRequest& request) {
  loads.push_back(request);
  loading_ = true;
  progress_ = 0.0;
  changeUrl(request.url);
}

platform::UserContentController& FakeWebView::userContentController() {
  return *configuration.userContentController;
}

std::unique_ptr<platform::Observation> FakeWebView::observeUrl(
    std::function<void(const std::optional<Url>&)> observer) {
  auto entry = std::make_shared<decltype(urlObservers_)::Entry>();
  entry->callback = std::move(observer);
  urlObservers_.entries.push_back(entry);
  return std::make_unique<EntryObservation<decltype(urlObservers_)::Entry>>(entry);
}

std::unique_ptr<platform::Observation> FakeWebView::observeEstimatedProgress(
    std::function<void(double)> observer) {
  auto entry = std::make_shared<decltype(progressObservers_)::Entry>();
  entry->callback = std::move(observer);
  progressObservers_.entries.push_back(entry);
  return std::make_unique<EntryObservation<decltype(progressObservers_)::Entry>>(entry);
}

platform::NavigationActionPolicy FakeWebView::decidePolicyForNavigationAction(
    const platform::NavigationAction& action) {
  const auto keep = shared_from_this();
  if (const auto delegate = delegate_.lock()) {
    return delegate->decidePolicyForNavigationAction(*this, action);
  }
  return platform::NavigationActionPolicy::allow;
}

platform::NavigationResponsePolicy FakeWebView::decidePolicyForNavigationResponse(
    const platform::NavigationResponse& response) {
  const auto keep = shared_from_this();
  if (const auto delegate = delegate_.lock()) {
    return delegate->decidePolicyForNavigationResponse(*this, response);
  }
  return platform::NavigationResponsePolicy::allow;
}

void FakeWebView::startProvisionalNavigation() {
  const auto keep = shared_from_this();
  loading_ = true;
  if (const auto delegate = delegate_.lock()) {
    delegate->didStartProvisionalNavigation(*this);
  }
}

void FakeWebView::failProvisionalNavigation(const platform::NavigationError& error,
                                            std::optional<Url> revertTo) {
  const auto keep = shared_from_this();
  loading_ = false;
  changeUrl(std::move(revertTo));
  if (const auto delegate = delegate_.lock()) {
    delegate->didFailProvisionalNavigation(*this, error);
  }
}

void FakeWebView::finishNavigation() {
  const auto keep = shared_from_this();
  loading_ = false;
  if (const auto delegate = delegate_.lock()) {
    delegate->didFinishNavigation(*this);
  }
}

void FakeWebView::failNavigation(const platform::NavigationError& error) {
  const auto keep = shared_from_this();
  loading_ = false;
  if (const auto delegate = delegate_.lock()) {
    delegate->didFailNavigation(*this, error);
  }
}

void FakeWebView::terminateWebContentProcess(platform::WebProcessTermination reason) {
  const auto keep = shared_from_this();
  loading_ = false;
  progress_ = 0.0;
  changeUrl(std::nullopt);
  if (const auto delegate = delegate_.lock()) {
    delegate->webContentProcessDidTerminate(*this, reason);
  }
}

void FakeWebView::changeUrl(std::optional<Url> url) {
  if (url == url_) {
    return;
  }
  const auto keep = shared_from_this();
  url_ = std::move(url);
  const std::optional<Url> current = url_;
  urlObservers_.notify(current);
}

void FakeWebView::changeEstimatedProgress(double progress) {
  const auto keep = shared_from_this();
  progress_ = progress;
  progressObservers_.notify(progress);
}

bool FakeWebView::postMessage(std::string_view channel, std::string body) {
  const auto keep = shared_from_this();
  auto* controller =
      dynamic_cast<FakeUserContentController*>(configuration.userContentController.get());
  if (controller == nullptr) {
    throw std::logic_error("a user content controller that the fake did not make");
  }
  return controller->post(channel, std::move(body));
}

std::size_t FakeWebView::liveUrlObservers() const {
  return urlObservers_.live();
}

std::size_t FakeWebView::liveProgressObservers() const {
  return progressObservers_.live();
}

}  // namespace vemba::fake
