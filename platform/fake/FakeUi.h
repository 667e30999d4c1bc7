// The fake user interface: makes recording screens, views, web views and emitter layers, records
// every constraint activation and animation, and runs animation completions in virtual time on
// the fake main queue. Objects are recorded weakly, so the core's lifetimes stay observable.
// Single-threaded, like the fake main queue.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "FakeScreen.h"
#include "FakeView.h"
#include "FakeWebView.h"
#include "platform/Ui.h"

namespace vemba::fake {

class FakeMainQueue;

// The fake platform's navigation bar show/hide duration and its root views' frame.
inline constexpr std::chrono::milliseconds kNavigationBarHideShowDuration{200};
inline constexpr platform::Rect kRootViewFrame{{0.0, 0.0}, {400.0, 800.0}};

class FakeUi final : public platform::Ui {
 public:
  struct Animation {
    std::chrono::duration<double> duration{};
    bool completed = false;  // the completion has run
  };

  explicit FakeUi(FakeMainQueue& queue) : queue_(&queue) {}

  std::shared_ptr<platform::Screen> createScreen() override;
  std::shared_ptr<platform::Screen> createNavigationScreen(
      std::shared_ptr<platform::Screen> root) override;
  std::shared_ptr<platform::View> createView() override;
  std::shared_ptr<platform::Button> createButton() override;
  std::shared_ptr<platform::ProgressBar> createProgressBar() override;
  std::shared_ptr<platform::UserContentController> createUserContentController() override;
  std::shared_ptr<platform::WebView> createWebView(
      platform::Rect frame, const platform::WebViewConfiguration& configuration) override;
  std::shared_ptr<platform::EmitterLayer> createEmitterLayer() override;
  // Count the hints; nothing is readied, but the readied process can be made to die (below)
  // until a view made with usesPreparedWebView takes it or it is released.
  void prepareWebView(std::function<void()> lost) override {
    ++prepareWebViewCalls;
    preparedLost_ = std::move(lost);
  }
  void releasePreparedWebView() override {
    ++releasePreparedWebViewCalls;
    preparedLost_ = nullptr;
  }
  // The readied web content process dies: the core hears of it as prepareWebView() asked. False
  // when nothing was readied.
  bool terminatePreparedWebViewProcess();

  // Records the constraints; throws std::logic_error when their views are not in one tree.
  void activate(const std::vector<platform::LayoutConstraint>& constraints) override;
  void animate(std::chrono::duration<double> duration, std::function<void()> animations,
               std::function<void(bool finished)> completion) override;
  std::string userInterfaceSystemVersion() const override { return systemVersion; }
  std::chrono::duration<double> navigationBarHideShowDuration() const override {
    return kNavigationBarHideShowDuration;
  }
  // The fake main queue's monotonic time in seconds.
  double currentMediaTime() const override;

  // Tests only: a tab container over `tabs` with `selected` chosen.
  std::shared_ptr<FakeScreen> createTabScreen(std::vector<std::shared_ptr<platform::Screen>> tabs,
                                              std::size_t selected);

  FakeMainQueue& queue() { return *queue_; }

  std::string systemVersion = "17.4.1";

  // What was made, oldest first.
  std::vector<std::weak_ptr<FakeScreen>> screens;
  std::vector<std::weak_ptr<FakeWebView>> webViews;
  std::vector<std::weak_ptr<FakeProgressBar>> progressBars;
  std::vector<std::weak_ptr<FakeEmitterLayer>> emitterLayers;
  std::vector<std::vector<platform::LayoutConstraint>> activations;  // one entry per activate()
  std::vector<Animation> animations;
  int prepareWebViewCalls = 0;
  int releasePreparedWebViewCalls = 0;

 private:
  FakeMainQueue* queue_;
  std::function<void()> preparedLost_;
};

}  // namespace vemba::fake
