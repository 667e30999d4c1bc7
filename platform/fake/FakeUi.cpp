#include "FakeUi.h"

#include <stdexcept>
#include <utility>

#include "FakeMainQueue.h"

namespace vemba::fake {

std::shared_ptr<platform::Screen> FakeUi::createScreen() {
  auto screen = std::make_shared<FakeScreen>(*this, platform::Screen::Kind::plain,
                                             std::vector<std::shared_ptr<FakeScreen>>{});
  screens.push_back(screen);
  return screen;
}

std::shared_ptr<platform::Screen> FakeUi::createNavigationScreen(
    std::shared_ptr<platform::Screen> root) {
  auto fakeRoot = std::dynamic_pointer_cast<FakeScreen>(root);
  if (!fakeRoot) {
    throw std::logic_error("a screen that the fake user interface did not make");
  }
  auto screen = std::make_shared<FakeScreen>(*this, platform::Screen::Kind::navigation,
                                             std::vector<std::shared_ptr<FakeScreen>>{fakeRoot});
  screens.push_back(screen);
  return screen;
}

std::shared_ptr<FakeScreen> FakeUi::createTabScreen(
    std::vector<std::shared_ptr<platform::Screen>> tabs, std::size_t selected) {
  std::vector<std::shared_ptr<FakeScreen>> children;
  for (auto& tab : tabs) {
    auto fakeTab = std::dynamic_pointer_cast<FakeScreen>(tab);
    if (!fakeTab) {
      throw std::logic_error("a screen that the fake user interface did not make");
    }
    children.push_back(std::move(fakeTab));
  }
  auto screen =
      std::make_shared<FakeScreen>(*this, platform::Screen::Kind::tab, std::move(children));
  screen->selectTab(selected);
  screens.push_back(screen);
  return screen;
}

std::shared_ptr<platform::View> FakeUi::createView() {
  return std::make_shared<FakeView>();
}

std::shared_ptr<platform::Button> FakeUi::createButton() {
  return std::make_shared<FakeButton>();
}

std::shared_ptr<platform::ProgressBar> FakeUi::createProgressBar() {
  auto bar = std::make_shared<FakeProgressBar>();
  progressBars.push_back(bar);
  return bar;
}

std::shared_ptr<platform::UserContentController> FakeUi::createUserContentController() {
  return std::make_shared<FakeUserContentController>();
}

std::shared_ptr<platform::WebView> FakeUi::createWebView(
    platform::Rect frame, const platform::WebViewConfiguration& configuration) {
  auto webView = std::make_shared<FakeWebView>(configuration);
  if (configuration.usesPreparedWebView) {
    preparedLost_ = nullptr;  // taken
  }
  webView->setFrame(frame);
  webViews.push_back(webView);
  return webView;
}

bool FakeUi::terminatePreparedWebViewProcess() {
  const std::function<void()> lost = std::exchange(preparedLost_, nullptr);
  if (lost) {
    lost();
  }
  return static_cast<bool>(lost);
}

std::shared_ptr<platform::EmitterLayer> FakeUi::createEmitterLayer() {
  auto layer = std::make_shared<FakeEmitterLayer>();
  emitterLayers.push_back(layer);
  return layer;
}

void FakeUi::activate(const std::vector<platform::LayoutConstraint>& constraints) {
  const platform::View* tree = nullptr;
  const auto check = [&tree](const platform::LayoutAnchor& anchor) {
    if (anchor.view == nullptr) {
      throw std::logic_error("a constraint on no view");
    }
    const platform::View* root = FakeViewState::of(*anchor.view).root();
    if (tree != nullptr && root != tree) {
      throw std::logic_error("constraints between views that are not in one tree");
    }
    tree = root;
  };
  for (const auto& constraint : constraints) {
    check(constraint.first);
    if (constraint.second) {
      check(*constraint.second);
    }
  }
  activations.push_back(constraints);
}

void FakeUi::animate(std::chrono::duration<double> duration, std::function<void()> changes,
                     std::function<void(bool finished)> completion) {
  const std::size_t index = animations.size();
  animations.push_back(Animation{duration, false});
  if (changes) {
    changes();
  }
  // The queue belongs to the same fake platform as this object and is destroyed after it,
  // without running what is left in it.
  queue_->postAfter(std::chrono::round<std::chrono::milliseconds>(duration),
                    [this, index, completion = std::move(completion)] {
                      animations[index].completed = true;
                      if (completion) {
                        completion(true);
                      }
                    });
}

double FakeUi::currentMediaTime() const {
  return std::chrono::duration<double>(queue_->monotonicNow().time_since_epoch()).count();
}

}  // namespace vemba::fake
