// A recording screen of the fake user interface: plain, navigation container or tab container.
// It keeps the contract of platform::Screen: the root view is made on first access (running the
// delegate's viewDidLoad); presentation and dismissal follow the shared PresentationNode rules;
// animated transitions end after kTransitionDuration of virtual time and every completion runs on
// a later turn of the main queue. A test plays the user with pressRightBarButtonItem() and
// userDismiss().
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/PresentationStack.h"
#include "platform/Screen.h"

namespace vemba::fake {

class FakeUi;

// How long an animated presentation or dismissal takes in virtual time.
inline constexpr std::chrono::milliseconds kTransitionDuration{300};

class FakeScreen final : public platform::Screen, public std::enable_shared_from_this<FakeScreen> {
 public:
  struct BarHiddenCall {
    bool hidden = false;
    bool animated = false;
    friend bool operator==(const BarHiddenCall&, const BarHiddenCall&) = default;
  };

  // `children`: the root of a navigation container, or the tabs of a tab container.
  FakeScreen(FakeUi& ui, Kind kind, std::vector<std::shared_ptr<FakeScreen>> children);
  ~FakeScreen() override;

  Kind kind() const override { return kind_; }
  platform::View& view() override;
  bool isViewLoaded() const override { return view_ != nullptr; }
  void setDelegate(std::weak_ptr<platform::ScreenDelegate> delegate) override {
    delegate_ = std::move(delegate);
  }
  // The controller that owns the screen, when it is still alive.
  std::shared_ptr<platform::ScreenDelegate> delegate() const { return delegate_.lock(); }
  void setPresentationDelegate(std::weak_ptr<platform::PresentationDelegate> delegate) override {
    presentationDelegate_ = std::move(delegate);
  }
  void setTitle(std::string title) override { title_ = std::move(title); }
  std::string title() const override { return title_; }
  void setRightBarButtonItem(std::optional<platform::BarButtonItem> item) override {
    rightBarButtonItem = std::move(item);
  }
  void setModalPresentationStyle(platform::ModalPresentationStyle style) override {
    modalPresentationStyle = style;
  }
  bool presentScreen(std::shared_ptr<platform::Screen> child, bool animated,
                     std::function<void()> completion) override;
  void dismiss(bool animated, std::function<void()> completion) override;
  std::shared_ptr<platform::Screen> presentedScreen() const override { return stack_.presented(); }
  platform::Screen* presentingScreen() const override { return stack_.presenting(); }
  std::shared_ptr<platform::Screen> visibleScreen() const override;
  std::shared_ptr<platform::Screen> selectedScreen() const override;
  platform::Screen* navigationContainer() const override;
  void setNavigationBarHidden(bool hidden, bool animated) override;
  bool isNavigationBarHidden() const override { return barHidden_; }

  // The user presses the right bar button item: runs its action. False when there is none.
  bool pressRightBarButtonItem();
  // The user dismisses this presented screen with the platform's gesture: it goes at once and
  // its presentation delegate is told. False (and nothing happens) when the screen is not
  // presented, is presented full screen, presents another screen, or a dismissal that would take
  // it is under way.
  bool userDismiss();
  // The user's escape gesture on this screen (an Escape its page left unhandled): the screen's
  // delegates may act on it, else a sheet goes as by userDismiss(). False when it meant nothing.
  bool pressEscape();
  // Tab containers: selects another tab.
  void selectTab(std::size_t index) { selected_ = index; }

  std::optional<platform::BarButtonItem> rightBarButtonItem;
  platform::ModalPresentationStyle modalPresentationStyle =
      platform::ModalPresentationStyle::automatic;
  std::vector<BarHiddenCall> barHiddenCalls;
  int viewWillAppearCount = 0;

 private:
  static void endAtOnce(const platform::PresentationNode::Dismissal& dismissal);
  void appear();
  void later(bool animated, std::function<void()> work);

  FakeUi* ui_;
  Kind kind_;
  std::vector<std::shared_ptr<FakeScreen>> children_;
  std::size_t selected_ = 0;
  std::shared_ptr<platform::View> view_;
  std::weak_ptr<platform::ScreenDelegate> delegate_;
  std::weak_ptr<platform::PresentationDelegate> presentationDelegate_;
  std::string title_;
  bool barHidden_ = false;
  platform::PresentationNode stack_{*this};
};

}  // namespace vemba::fake
