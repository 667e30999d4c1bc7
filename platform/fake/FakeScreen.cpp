#include "FakeScreen.h"

#include <stdexcept>

#include "FakeMainQueue.h"
#include "FakeUi.h"

namespace vemba::fake {

FakeScreen::FakeScreen(FakeUi& ui, Kind kind, std::vector<std::shared_ptr<FakeScreen>> children)
    : ui_(&ui), kind_(kind), children_(std::move(children)) {
  if (kind_ == Kind::navigation) {
    if (children_.size() != 1 || !children_.front() ||
        children_.front()->stack_.container() != nullptr) {
      throw std::logic_error("a navigation container needs one root that has no container");
    }
    children_.front()->stack_.setContainer(stack_);
  }
}

FakeScreen::~FakeScreen() = default;

platform::Screen* FakeScreen::navigationContainer() const {
  const platform::PresentationNode* container = stack_.container();
  return container != nullptr ? &container->owner() : nullptr;
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

bool FakeScreen::presentScreen(std::shared_ptr<platform::Screen> child, bool animated,
                               std::function<void()> completion) {
  auto fakeChild = std::dynamic_pointer_cast<FakeScreen>(child);
  if (!fakeChild) {
    throw std::logic_error("a screen that the fake user interface did not make");
  }
  if (!stack_.canPresent(fakeChild->stack_)) {
    return false;  // as on a phone: nothing happens and the completion never runs
  }
  FakeScreen& shown = *fakeChild;
  auto finished = stack_.beginPresentation(std::move(fakeChild), shown.stack_,
                                           shown.delegate_.lock(), std::move(completion));
  shown.appear();
  if (finished) {
    later(animated, std::move(finished));
  }
  return true;
}

void FakeScreen::dismiss(bool animated, std::function<void()> completion) {
  platform::PresentationNode* presenter = stack_.dismissalPresenter();
  if (presenter == nullptr) {
    if (completion) {
      ui_->queue().post(std::move(completion));
    }
    return;
  }
  const auto dismissal = presenter->beginDismissal(std::move(completion));
  if (!dismissal) {
    return;  // the completion runs when the dismissal under way ends
  }
  later(animated, [keep = static_cast<FakeScreen&>(presenter->owner()).shared_from_this(),
                   id = dismissal->id] { keep->stack_.endDismissal(id); });
}

std::shared_ptr<platform::Screen> FakeScreen::visibleScreen() const {
  if (kind_ != Kind::navigation) {
    return nullptr;
  }
  if (const auto& presented = stack_.presented()) {
    return presented;
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
  const auto dismissal = stack_.beginUserDismissal(modalPresentationStyle, presentationDelegate_);
  if (dismissal) {
    endAtOnce(*dismissal);
  }
  return dismissal.has_value();
}

bool FakeScreen::pressEscape() {
  const auto own = delegate_.lock();
  const auto root = kind_ == Kind::navigation ? children_.front()->delegate_.lock() : nullptr;
  const auto escape =
      stack_.escape(modalPresentationStyle, presentationDelegate_, {own.get(), root.get()});
  if (escape.dismissal) {
    endAtOnce(*escape.dismissal);
  }
  return escape.handled;
}

void FakeScreen::endAtOnce(const platform::PresentationNode::Dismissal& dismissal) {
  // The gesture's own animation is over when a test plays it: the screen goes at once.
  const auto presenter = static_cast<FakeScreen&>(dismissal.presenter->owner()).shared_from_this();
  presenter->stack_.endDismissal(dismissal.id);
}

}  // namespace vemba::fake
