// The stack of modal presentations that every backend's screens share: who presents whom, which
// presentations are refused, what a dismissal takes, and when each completion runs. A backend's
// screen owns one PresentationNode and drives it; the backend keeps only what is its own (the
// drawing, the transitions and the queue that runs their ends). Main thread only.
//
// The rules:
// - A screen presents at most one screen at a time. A presentation is refused (nothing happens
//   and its completion never runs) when the presenter already presents one, when the child is
//   already presented, is the root of a navigation container, or is the presenter itself or
//   anything the presenter stands on.
// - The presenter holds the presented screen and its ScreenDelegate strongly until the
//   dismissal that takes it has ended.
// - Dismissing a screen takes everything presented above it. At the end of the dismissal the
//   screens are torn down top first, unlinked, and released top first (each screen, then its
//   delegate) before any completion runs.
// - Completions at the end of a dismissal run in this order: presentations of the taken screens
//   whose transition had not ended when a dismissal began (bottom first; each such presentation
//   completes here, never during the dismissal's transition), then dismissals under way higher up
//   that this one took over (top first), then this dismissal's own (in the order requested).
// - A dismissal asked for while one of the same screen is under way joins it: its completion runs
//   when that one ends.
//
// Lifetimes: the node lives inside its screen (`owner`) and never outlives it. Links to other
// nodes are raw pointers kept valid by the strong hold of the presenter on the presented screen
// and by the destructor, which unlinks what the node presents and its container links.
#pragma once

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <memory>
#include <optional>
#include <vector>

#include "platform/Screen.h"

namespace vemba::platform {

class PresentationNode {
 public:
  // A dismissal that has begun: the backend runs its transition, then calls
  // presenter->endDismissal(id), keeping the presenter's screen alive until then.
  struct Dismissal {
    PresentationNode* presenter = nullptr;
    std::uint64_t id = 0;
  };

  explicit PresentationNode(Screen& owner) : owner_(&owner) {}
  // A presenter that goes away lets go of the screen it presents; that screen keeps what it
  // presents. Completions still pending on this node never run.
  ~PresentationNode();
  PresentationNode(const PresentationNode&) = delete;
  PresentationNode& operator=(const PresentationNode&) = delete;

  Screen& owner() const { return *owner_; }
  // The screen this one presents and the node of that screen; null when none.
  const std::shared_ptr<Screen>& presented() const { return presented_; }
  PresentationNode* presentedNode() const { return presentedNode_; }
  // The node of the screen that presents this one; null when none.
  PresentationNode* presentingNode() const { return presenting_; }
  Screen* presenting() const { return presenting_ != nullptr ? presenting_->owner_ : nullptr; }

  // Makes `container` (a navigation container's node) the container of this root screen.
  void setContainer(PresentationNode& container);
  PresentationNode* container() const { return container_; }

  // Whether `child` may be presented from this screen now (see the rules above).
  bool canPresent(const PresentationNode& child) const;
  // Puts `child` on top of this screen, holding it and `childDelegate` until its dismissal has
  // ended. Call only after canPresent(childNode). Returns what the backend calls once the
  // presentation's transition has ended (empty when `completion` is): it runs `completion`
  // unless a dismissal began first, in which case that dismissal's end runs it.
  std::function<void()> beginPresentation(std::shared_ptr<Screen> child,
                                          PresentationNode& childNode,
                                          std::shared_ptr<ScreenDelegate> childDelegate,
                                          std::function<void()> completion);

  // The node whose presented screen a dismiss() called on this screen takes: this one when it
  // presents, else the presenter of this screen (or of the navigation container it is the root
  // of); null when there is nothing to dismiss.
  PresentationNode* dismissalPresenter();
  // Asks this presenter to dismiss what it presents (it must present something). Returns the
  // dismissal that begins, or nothing when one is under way and `completion` joins it.
  std::optional<Dismissal> beginDismissal(std::function<void()> completion);
  // The user's dismissal of this presented screen by the platform's gesture: refused (nothing)
  // when the screen is not presented, is presented full screen, presents another screen (the
  // gesture reaches only the top one), a dismissal that would take it is under way, or
  // `delegate` declines (presentationControllerShouldDismiss). Otherwise a dismissal by its
  // presenter begins whose completion tells `delegate`.
  std::optional<Dismissal> beginUserDismissal(ModalPresentationStyle style,
                                              std::weak_ptr<PresentationDelegate> delegate);

  // What the user's escape gesture does on this screen, the top of its window's presentations.
  // `delegates` (the screen's own ScreenDelegate, then its root's; null entries are skipped) are
  // asked in turn (accessibilityPerformEscape) until one acts; when none does, it is the user's
  // dismissal of a sheet (beginUserDismissal). `handled` is false only when the gesture meant
  // nothing here: the screen is not presented, or presents another screen.
  struct Escape {
    bool handled = false;
    std::optional<Dismissal> dismissal;  // the backend runs its transition
  };
  Escape escape(ModalPresentationStyle style, std::weak_ptr<PresentationDelegate> delegate,
                std::initializer_list<ScreenDelegate*> delegates);

  // The window this screen (the top of its window's presentations) is shown in has closed, and
  // the screen leaves as the user would take it: `delegates` are offered the escape gesture first
  // (a screen that closes itself, as an ad does, begins its own dismissal); otherwise its
  // presenter dismisses it, telling a sheet's `delegate` as for the user's gesture (which nothing
  // may decline now). Returns the dismissal that takes it: the backend ends it at once.
  Dismissal dismissForClosedWindow(ModalPresentationStyle style,
                                   std::weak_ptr<PresentationDelegate> delegate,
                                   std::initializer_list<ScreenDelegate*> delegates);
  // Ends dismissal `id` of this presenter (nothing when that dismissal was taken over by a lower
  // one or has ended): `tearDown` (may be empty) sees each taken screen top first while still
  // linked, then the screens are unlinked and released, then the completions run.
  void endDismissal(std::uint64_t id, const std::function<void(Screen&)>& tearDown = {});

 private:
  struct PendingPresentation;

  // A dismissal under way takes this presented screen.
  bool isBeingDismissed() const;

  Screen* owner_;
  PresentationNode* container_ = nullptr;  // the navigation container this is the root of
  PresentationNode* root_ = nullptr;       // the root of this navigation container
  PresentationNode* presenting_ = nullptr;
  std::shared_ptr<Screen> presented_;
  PresentationNode* presentedNode_ = nullptr;
  std::shared_ptr<ScreenDelegate> presentedDelegate_;
  std::shared_ptr<PendingPresentation> pendingPresentation_;  // of this screen, while presented
  bool dismissing_ = false;
  std::uint64_t dismissalId_ = 0;
  std::vector<std::function<void()>> dismissCompletions_;
};

}  // namespace vemba::platform
