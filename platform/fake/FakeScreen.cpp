#include "FakeScreen.h"

#include <stdexcept>

#include "FakeMainQueue.h"
#include "FakeUi.h"

namespace vemba::fake {

FakeScreen::FakeScreen(FakeUi& ui, Kind kind, std::vector<std::shared_ptr<FakeScreen>> children)
    : ui_(&ui), kind_(kind), children_(std::move(children)) {
  if (kind_ == Kind::navigation) {
    if (children_.size() != 1 || !children_.front() || children_.front()->container_ != nullptr) {
      throw std::logic_error("a navigation container needs one root that has no container");
    }
    children_.front()->container_ = this;
  }
}

FakeScreen::~FakeScreen() {
  if (kind_ == Kind::navigation && children_.front()->container_ == this) {
    children_.front()->container_ = nullptr;
  }
  if (presented_ && presented_->presenting_ == this) {
    presented_->presenting_ = nullptr;
  }
}

platform::View& FakeScreen::view() {
  if (!view_) {
    view_ = ui_->createView();
    view_->setFrame(kRootViewFrame);
    if (const auto delegate = delegate_.lock()) {
      delegate->viewDidLoad();
    }
  }
  return *view_;
}

void FakeScreen::appear() {
  view();
  if (kind_ == Kind::navigation) {
    children_.front()->view();
  }
  ++viewWillAppearCount;
  if (const auto delegate = delegate_.lock()) {
    delegate->viewWillAppear();
  }
  if (kind_ == Kind::navigation) {
    FakeScreen& root = *children_.front();
    ++root.viewWillAppearCount;
    if (const auto delegate = root.delegate_.lock()) {
      delegate->viewWillAppear();
    }
  }
}

void FakeScreen::later(bool animated, std::function<void()> work) {
  if (animated) {
    ui_->queue().postAfter(kTransitionDuration, std::move(work));
  } else {
    ui_->queue().post(std::move(work));
  }
}

void FakeScreen::presentScreen(std::shared_ptr<platform::Screen> child, bool animated,
                               std::function<void()> completion) {
  auto fakeChild = std::dynamic_pointer_cast<FakeScreen>(child);
  if (!fakeChild) {
    throw std::logic_error("a screen that the fake user interface did not make");
  }
  if (presented_ || fakeChild->presenting_ != nullptr || fakeChild.get() == this) {
    return;  // as on a phone: nothing happens and the completion never runs
  }
  presented_ = fakeChild;
  presentedDelegate_ = fakeChild->delegate_.lock();
  fakeChild->presenting_ = this;
  fakeChild->appear();
  if (completion) {
    later(animated, std::move(completion));
  }
}

void FakeScreen::dismiss(bool animated, std::function<void()> completion) {
  // The screen to dismiss: the one this presents, else this one (or the navigation container
  // it is the root of) when it is presented.
  FakeScreen* presenter = presented_ ? this : nullptr;
  if (presenter == nullptr) {
    const FakeScreen* target = this;
    while (target->presenting_ == nullptr && target->container_ != nullptr) {
      target = target->container_;
    }
    presenter = target->presenting_;
  }
  if (presenter == nullptr) {
    if (completion) {
      ui_->queue().post(std::move(completion));
    }
    return;
  }
  if (completion) {
    presenter->dismissCompletions_.push_back(std::move(completion));
  }
  if (presenter->dismissing_) {
    return;  // the completion runs when the dismissal under way ends
  }
  presenter->dismissing_ = true;
  later(animated, [keep = presenter->shared_from_this()] { keep->endPresentation(); });
}

void FakeScreen::endPresentation() {
  // Everything presented above the dismissed screen goes with it, top first.
  std::vector<std::shared_ptr<FakeScreen>> chain;
  for (auto screen = presented_; screen; screen = screen->presented_) {
    chain.push_back(screen);
  }
  FakeScreen* presenter = this;
  for (auto& screen : chain) {
    screen->presenting_ = nullptr;
    presenter->presented_.reset();
    presenter->presentedDelegate_.reset();
    presenter->dismissing_ = false;
    presenter = screen.get();
  }
  dismissing_ = false;
  std::vector<std::function<void()>> completions = std::move(dismissCompletions_);
  dismissCompletions_.clear();
  chain.clear();  // releases the dismissed screens before the completions run
  for (auto& completion : completions) {
    completion();
  }
}

std::shared_ptr<platform::Screen> FakeScreen::visibleScreen() const {
  if (kind_ != Kind::navigation) {
    return nullptr;
  }
  if (presented_) {
    return presented_;
  }
  return children_.front();
}

std::shared_ptr<platform::Screen> FakeScreen::selectedScreen() const {
  if (kind_ != Kind::tab || selected_ >= children_.size()) {
    return nullptr;
  }
  return children_[selected_];
}

void FakeScreen::setNavigationBarHidden(bool hidden, bool animated) {
  if (kind_ != Kind::navigation) {
    return;
  }
  barHidden_ = hidden;
  barHiddenCalls.push_back({hidden, animated});
}

bool FakeScreen::pressRightBarButtonItem() {
  if (!rightBarButtonItem || !rightBarButtonItem->action) {
    return false;
  }
  const std::function<void()> action = rightBarButtonItem->action;
  action();
  return true;
}

bool FakeScreen::userDismiss() {
  if (presenting_ == nullptr ||
      modalPresentationStyle != platform::ModalPresentationStyle::automatic) {
    return false;
  }
  const auto keep = shared_from_this();
  const auto delegate = presentationDelegate_.lock();
  presenting_->endPresentation();
  if (delegate) {
    delegate->presentationControllerDidDismiss();
  }
  return true;
}

}  // namespace vemba::fake
