// Presentable screens (a phone's view controllers): a root view, modal presentation and dismissal
// with completions, navigation and tab containers, and the bar items of a navigation bar.
//
// The core's screen classes each own one Screen and act as its ScreenDelegate; the backend draws
// the screen and reports its lifecycle. Main thread only.
//
// Lifetimes:
// - The creator owns a screen. A screen holds its delegates weakly.
// - While a screen is presented, its presenter holds it and its ScreenDelegate strongly (as a
//   phone's presentation keeps the presented controller alive) and releases both once the
//   dismissal has completed, before the dismissal's completion runs.
// - A navigation container holds its root screen strongly for its whole life.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "vemba/ScreenHandle.h"
#include "vemba/platform/Color.h"

namespace vemba::platform {

class View;

// What the backend tells the core's controller of a screen.
class ScreenDelegate {
 public:
  virtual ~ScreenDelegate() = default;
  // The root view exists now (first access of Screen::view()); runs once per screen.
  virtual void viewDidLoad() {}
  // The screen is about to appear: each time it (or the container it is the root of) is
  // presented.
  virtual void viewWillAppear() {}
  // The user's escape gesture reached this presented screen (on a desktop: an Escape key its
  // content left unhandled). True when the screen acted on it; otherwise a sheet takes it as the
  // user's dismissal. Asked of a navigation container's delegate first, then of its root's.
  virtual bool accessibilityPerformEscape() { return false; }
  // The view that takes keyboard focus when the screen is presented (null: the platform's first
  // focusable view of the screen). Asked as accessibilityPerformEscape() is.
  virtual View* preferredFocusView() { return nullptr; }
};

// Told when the user dismissed a presented screen by the platform's own gesture (a swipe down on
// a phone; Escape or a click on the dimmed backdrop of a desktop sheet), after that dismissal has
// completed. Never told of a dismissal the core asked for.
class PresentationDelegate {
 public:
  virtual ~PresentationDelegate() = default;
  // Asked before the user's gesture dismisses the screen; false keeps it on screen.
  virtual bool presentationControllerShouldDismiss() { return true; }
  virtual void presentationControllerDidDismiss() = 0;
};

enum class ModalPresentationStyle {
  automatic,   // the platform's sheet: dismissable by the user's gesture
  fullScreen,  // covers the whole window; only the core dismisses it
};

// An item of a navigation bar.
struct BarButtonItem {
  enum class Kind {
    systemClose,  // the platform's standard close item
    image,        // the platform's system image named `systemImageName`, plain style
  };
  Kind kind = Kind::systemClose;
  std::string systemImageName;  // for Kind::image, e.g. "xmark"
  std::optional<Color> tintColor;
  std::function<void()> action;  // runs on each press
};

class Screen : public ScreenHandle {
 public:
  enum class Kind { plain, navigation, tab };

  // The screen behind a host's handle; null for null and for a handle the library did not make.
  static std::shared_ptr<Screen> of(const std::shared_ptr<ScreenHandle>& handle) {
    return std::dynamic_pointer_cast<Screen>(handle);
  }

  ~Screen() override = default;

  virtual Kind kind() const = 0;

  // The root view. The first access creates it and runs the delegate's viewDidLoad() before
  // returning; presenting a screen accesses its view (and its root's, for a container).
  virtual View& view() = 0;
  virtual bool isViewLoaded() const = 0;

  virtual void setDelegate(std::weak_ptr<ScreenDelegate> delegate) = 0;
  // The delegate of the screen's presentation (see PresentationDelegate).
  virtual void setPresentationDelegate(std::weak_ptr<PresentationDelegate> delegate) = 0;

  // Shown in the navigation bar of the container this screen is the root of.
  virtual void setTitle(std::string title) = 0;
  virtual std::string title() const = 0;
  virtual void setRightBarButtonItem(std::optional<BarButtonItem> item) = 0;

  virtual void setModalPresentationStyle(ModalPresentationStyle style) = 0;

  // Presents `child` modally over this screen in the child's presentation style. `completion`
  // (may be empty) runs once the presentation has finished (after the transition when animated).
  // A screen presents at most one child: when this one already presents another, or `child` is
  // already presented, nothing happens and `completion` never runs (as on a phone). False when
  // the presentation was refused, for these or the platform's own reasons.
  virtual bool presentScreen(std::shared_ptr<Screen> child, bool animated,
                             std::function<void()> completion) = 0;
  // Dismisses the screen this one presents, or, when it presents none, this screen itself;
  // everything presented above the dismissed screen goes with it. `completion` (may be empty)
  // runs once the dismissal has finished, or on a later turn of the main queue when there was
  // nothing to dismiss.
  virtual void dismiss(bool animated, std::function<void()> completion) = 0;
  // The screen this one presents, and the one that presents this one; absent when none.
  virtual std::shared_ptr<Screen> presentedScreen() const = 0;
  virtual Screen* presentingScreen() const = 0;

  // Containers. visibleScreen(): for a navigation container, its top screen, or the screen it
  // presents when it presents one; selectedScreen(): for a tab container, the selected tab.
  // Absent for other kinds.
  virtual std::shared_ptr<Screen> visibleScreen() const = 0;
  virtual std::shared_ptr<Screen> selectedScreen() const = 0;
  // The navigation container this screen is the root of; absent when none.
  virtual Screen* navigationContainer() const = 0;
  // Navigation containers only: hides or shows the bar (over Ui::navigationBarHideShowDuration()
  // when animated).
  virtual void setNavigationBarHidden(bool hidden, bool animated) = 0;
  virtual bool isNavigationBarHidden() const = 0;
};

}  // namespace vemba::platform
