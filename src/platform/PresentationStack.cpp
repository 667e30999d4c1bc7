#include "platform/PresentationStack.h"

#include <utility>

namespace vemba::platform {

// A presentation's completion, run once: by the end of its transition, or by the end of a
// dismissal that began before the transition ended (`deferred`).
struct PresentationNode::PendingPresentation {
  std::function<void()> completion;
  bool deferred = false;
};

namespace {

// The completion of a dismissal by the user's gesture. It holds the delegate from the gesture on:
// the screen's presenter releases the screen (and with it, often, the delegate's only owner)
// before the completions run, and the delegate must still hear of it.
std::function<void()> tellingDelegate(const std::weak_ptr<PresentationDelegate>& delegate) {
  return [told = delegate.lock()] {
    if (told) {
      told->presentationControllerDidDismiss();
    }
  };
}

}  // namespace

PresentationNode::~PresentationNode() {
  if (presentedNode_ != nullptr && presentedNode_->presenting_ == this) {
    presentedNode_->presenting_ = nullptr;
  }
  if (root_ != nullptr && root_->container_ == this) {
    root_->container_ = nullptr;
  }
  if (container_ != nullptr && container_->root_ == this) {
    container_->root_ = nullptr;
  }
}

void PresentationNode::setContainer(PresentationNode& container) {
  container_ = &container;
  container.root_ = this;
}

bool PresentationNode::canPresent(const PresentationNode& child) const {
  if (presented_ || child.presenting_ != nullptr || child.container_ != nullptr) {
    return false;
  }
  // Presenting what this screen stands on (itself, its container, a screen below) would make a
  // loop of screens holding each other.
  for (const PresentationNode* below = this; below != nullptr;
       below = below->presenting_ != nullptr ? below->presenting_ : below->container_) {
    if (below == &child) {
      return false;
    }
  }
  return true;
}

std::function<void()> PresentationNode::beginPresentation(
    std::shared_ptr<Screen> child, PresentationNode& childNode,
    std::shared_ptr<ScreenDelegate> childDelegate, std::function<void()> completion) {
  presented_ = std::move(child);
  presentedNode_ = &childNode;
  presentedDelegate_ = std::move(childDelegate);
  childNode.presenting_ = this;
  childNode.pendingPresentation_.reset();
  if (!completion) {
    return {};
  }
  auto pending = std::make_shared<PendingPresentation>();
  pending->completion = std::move(completion);
  childNode.pendingPresentation_ = pending;
  return [pending] {
    if (!pending->deferred) {
      if (auto run = std::exchange(pending->completion, nullptr)) {
        run();
      }
    }
  };
}

PresentationNode* PresentationNode::dismissalPresenter() {
  if (presented_) {
    return this;
  }
  const PresentationNode* target = this;
  while (target->presenting_ == nullptr && target->container_ != nullptr) {
    target = target->container_;
  }
  return target->presenting_;
}

std::optional<PresentationNode::Dismissal> PresentationNode::beginDismissal(
    std::function<void()> completion) {
  if (completion) {
    dismissCompletions_.push_back(std::move(completion));
  }
  if (dismissing_) {
    return std::nullopt;
  }
  dismissing_ = true;
  for (PresentationNode* node = presentedNode_; node != nullptr; node = node->presentedNode_) {
    if (node->pendingPresentation_) {
      node->pendingPresentation_->deferred = true;
    }
  }
  return Dismissal{this, ++dismissalId_};
}

std::optional<PresentationNode::Dismissal> PresentationNode::beginUserDismissal(
    ModalPresentationStyle style, std::weak_ptr<PresentationDelegate> delegate) {
  if (presenting_ == nullptr || style != ModalPresentationStyle::automatic || presented_) {
    return std::nullopt;
  }
  if (isBeingDismissed()) {
    return std::nullopt;
  }
  if (const auto asked = delegate.lock(); asked && !asked->presentationControllerShouldDismiss()) {
    return std::nullopt;
  }
  return presenting_->beginDismissal(tellingDelegate(delegate));
}

bool PresentationNode::isBeingDismissed() const {
  for (const PresentationNode* below = presenting_; below != nullptr; below = below->presenting_) {
    if (below->dismissing_) {
      return true;
    }
  }
  return false;
}

PresentationNode::Escape PresentationNode::escape(
    ModalPresentationStyle style, std::weak_ptr<PresentationDelegate> delegate,
    std::initializer_list<ScreenDelegate*> delegates) {
  if (presenting_ == nullptr || presented_) {
    return {};
  }
  // A screen on its way out takes no more gestures, and neither does what lies beneath it.
  if (isBeingDismissed()) {
    return {true, std::nullopt};
  }
  for (ScreenDelegate* screenDelegate : delegates) {
    if (screenDelegate != nullptr && screenDelegate->accessibilityPerformEscape()) {
      return {true, std::nullopt};
    }
  }
  return {true, beginUserDismissal(style, std::move(delegate))};
}

PresentationNode::Dismissal PresentationNode::dismissForClosedWindow(
    ModalPresentationStyle style, std::weak_ptr<PresentationDelegate> delegate,
    std::initializer_list<ScreenDelegate*> delegates) {
  PresentationNode* presenter = presenting_;
  for (ScreenDelegate* screenDelegate : delegates) {
    if (screenDelegate != nullptr && screenDelegate->accessibilityPerformEscape()) {
      break;
    }
  }
  if (!presenter->dismissing_) {
    presenter->beginDismissal(style == ModalPresentationStyle::automatic ? tellingDelegate(delegate)
                                                                         : std::function<void()>());
  }
  return Dismissal{presenter, presenter->dismissalId_};
}

void PresentationNode::endDismissal(std::uint64_t id,
                                    const std::function<void(Screen&)>& tearDown) {
  if (!dismissing_ || id != dismissalId_) {
    return;  // taken over by a lower dismissal, or already ended
  }
  std::vector<PresentationNode*> chain;  // bottom first
  for (PresentationNode* node = presentedNode_; node != nullptr; node = node->presentedNode_) {
    chain.push_back(node);
  }

  // Collect every completion first, and mark the dismissals taken over as ended, so that a
  // transition the tear-down stops cannot end any of them again.
  std::vector<std::function<void()>> completions;
  for (PresentationNode* node : chain) {
    if (const auto pending = std::move(node->pendingPresentation_)) {
      if (auto run = std::exchange(pending->completion, nullptr)) {
        completions.push_back(std::move(run));
      }
    }
  }
  for (auto it = chain.rbegin(); it != chain.rend(); ++it) {
    PresentationNode& node = **it;
    if (node.dismissing_) {
      node.dismissing_ = false;
      for (auto& completion : node.dismissCompletions_) {
        completions.push_back(std::move(completion));
      }
      node.dismissCompletions_.clear();
    }
  }
  dismissing_ = false;
  for (auto& completion : dismissCompletions_) {
    completions.push_back(std::move(completion));
  }
  dismissCompletions_.clear();

  if (tearDown) {
    for (auto it = chain.rbegin(); it != chain.rend(); ++it) {
      tearDown((*it)->owner());
    }
  }

  // Unlink top first, keeping the strong holds until every link is cut.
  std::vector<std::shared_ptr<Screen>> screens;
  std::vector<std::shared_ptr<ScreenDelegate>> delegates;
  for (auto it = chain.rbegin(); it != chain.rend(); ++it) {
    PresentationNode& presenter = *(*it)->presenting_;
    screens.push_back(std::move(presenter.presented_));
    delegates.push_back(std::move(presenter.presentedDelegate_));
    presenter.presentedNode_ = nullptr;
    (*it)->presenting_ = nullptr;
  }
  chain.clear();
  for (std::size_t i = 0; i < screens.size(); ++i) {
    screens[i].reset();
    delegates[i].reset();
  }

  for (auto& completion : completions) {
    completion();
  }
}

}  // namespace vemba::platform
