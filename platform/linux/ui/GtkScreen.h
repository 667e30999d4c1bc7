// Screens of the GTK backend, presented inside the window of the screen they are presented
// from. Main thread only.
//
// The first presentation in a window wraps the window's content in a GtkOverlay (and keeps it
// wrapped: content the host puts into the window later goes beneath what is presented); each
// presented screen is then an overlay child above everything presented before it:
// - full-screen style: the screen's root view covers the window;
// - automatic style (a sheet): a panel (at most kSheetMaxWidth wide, kSheetTopInset below the
//   top, following the window's size) over a dimmed backdrop; a click on the backdrop is the
//   user's dismissal (the sheet is dismissed, then its PresentationDelegate is told).
// Presentations are modal (WindowModality.h): beneath the top one nothing takes input, and the
// keyboard focus is in it. An Escape the focused content (the page) leaves unhandled is the
// user's escape gesture on the top presentation (PresentationNode::escape()). When the window
// closes, its presentations leave at once, top first, as the user would take them
// (PresentationNode::dismissForClosedWindow()).
// A navigation container's view is a column of a header bar (its root's title and right bar
// item) in a GtkRevealer and its root screen's view.
//
// Lifetimes follow platform::Screen: the creator owns a screen; while presented, the presenter
// holds it and its ScreenDelegate and releases both before the dismissal's completion runs. A
// window's own screen (forWindow()) lives as long as the window, and one main-loop turn longer
// when the window closes with something presented.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "LiveObjects.h"
#include "platform/PresentationStack.h"
#include "platform/Screen.h"
#include "platform/View.h"

using GtkWidget = struct _GtkWidget;
using GtkWindow = struct _GtkWindow;

namespace vemba::linux_platform {

class GtkScreen final : public platform::Screen, public std::enable_shared_from_this<GtkScreen> {
 public:
  // Transitions of animated presentations and dismissals.
  static constexpr std::chrono::duration<double> kTransitionDuration{0.25};
  // The navigation bar's show and hide animation (the revealer's transition).
  static constexpr std::chrono::milliseconds kBarHideShowDuration{200};
  // A sheet's panel: at most this wide, centred, this far below the window's top edge.
  static constexpr int kSheetMaxWidth = 640;
  static constexpr int kSheetTopInset = 32;

  static std::shared_ptr<GtkScreen> createPlain();
  static std::shared_ptr<GtkScreen> createNavigation(std::shared_ptr<platform::Screen> root);
  // The screen at the root of `window`'s content: one per window, made on first request, living
  // as long as the window. Its view is the window's content (wrapped in the overlay).
  static std::shared_ptr<GtkScreen> forWindow(GtkWindow* window);

  ~GtkScreen() override;
  GtkScreen(const GtkScreen&) = delete;
  GtkScreen& operator=(const GtkScreen&) = delete;

  Kind kind() const override { return kind_; }
  platform::View& view() override;
  bool isViewLoaded() const override { return view_ != nullptr; }
  void setDelegate(std::weak_ptr<platform::ScreenDelegate> delegate) override;
  void setPresentationDelegate(std::weak_ptr<platform::PresentationDelegate> delegate) override;
  void setTitle(std::string title) override;
  std::string title() const override { return title_; }
  void setRightBarButtonItem(std::optional<platform::BarButtonItem> item) override;
  void setModalPresentationStyle(platform::ModalPresentationStyle style) override;
  bool presentScreen(std::shared_ptr<platform::Screen> child, bool animated,
                     std::function<void()> completion) override;
  void dismiss(bool animated, std::function<void()> completion) override;
  std::shared_ptr<platform::Screen> presentedScreen() const override { return stack_.presented(); }
  platform::Screen* presentingScreen() const override { return stack_.presenting(); }
  std::shared_ptr<platform::Screen> visibleScreen() const override;
  std::shared_ptr<platform::Screen> selectedScreen() const override { return nullptr; }
  platform::Screen* navigationContainer() const override { return container(); }
  void setNavigationBarHidden(bool hidden, bool animated) override;
  bool isNavigationBarHidden() const override { return barHidden_; }

  // The user's dismissal of this presented sheet (a backdrop click); false when this screen is
  // not the top presented sheet, a dismissal that would take it is under way, or its
  // PresentationDelegate declines. Tests call it directly too.
  bool userDismiss();
  // The user's escape gesture on this screen (an Escape its content left unhandled); false when
  // it meant nothing here. Tests call it directly too.
  bool escape();

  // Tests and tools: the window this screen is shown in (or would present into), the widgets
  // of its presentation and navigation bar (null when there are none).
  GtkWindow* window() const;
  GtkWidget* presentationWidget() const { return presentation_; }
  GtkWidget* sheetPanel() const { return panel_; }
  GtkWidget* sheetBackdrop() const { return backdrop_; }
  GtkWidget* headerBar() const { return headerBar_; }
  GtkWidget* titleLabel() const { return titleLabel_; }
  GtkWidget* rightItemButton() const { return rightButton_; }
  GtkWidget* barRevealer() const { return revealer_; }

 private:
  explicit GtkScreen(Kind kind);
  // The screen that owns `node`: every screen in a GTK presentation stack is a GtkScreen.
  static GtkScreen& of(const platform::PresentationNode& node);

  GtkScreen* container() const;
  void appear();
  // The widget the screen's delegates want focused when it is presented; null when none.
  GtkWidget* preferredFocusWidget();
  void buildPresentation(GtkWidget* overlay);
  // Runs `handler` with the Escape key presses that reach the presentation in `phase`; its answer
  // says whether the key was taken.
  using EscapeHandler = bool (*)(GtkScreen& screen, std::uint32_t eventTime);
  void onEscape(int phase, EscapeHandler handler);
  void tearDownPresentation();
  // The window of this window's own screen has closed: everything presented leaves at once.
  void windowDidClose();
  void runDismissal(std::uint64_t id, bool animated);
  void updateBar();
  GtkWidget* contentWidget();

  Kind kind_;
  bool isWindowRoot_ = false;         // made by forWindow()
  GtkWindow* windowOfOwn_ = nullptr;  // forWindow() screens only, until the window closes
  std::shared_ptr<platform::View> view_;
  std::weak_ptr<platform::ScreenDelegate> delegate_;
  std::weak_ptr<platform::PresentationDelegate> presentationDelegate_;
  std::string title_;
  std::optional<platform::BarButtonItem> rightItem_;
  platform::ModalPresentationStyle style_ = platform::ModalPresentationStyle::automatic;

  // Navigation containers.
  std::shared_ptr<GtkScreen> root_;
  GtkWidget* revealer_ = nullptr;
  GtkWidget* headerBar_ = nullptr;
  GtkWidget* titleLabel_ = nullptr;
  GtkWidget* rightButton_ = nullptr;
  bool barHidden_ = false;

  // This screen's own presentation widgets while it is presented.
  GtkWidget* presentation_ = nullptr;
  GtkWidget* panel_ = nullptr;
  GtkWidget* backdrop_ = nullptr;
  GtkWindow* modalWindow_ = nullptr;  // whose WindowModality holds presentation_; weak
  // The latest Escape press, and whether the presentation delegate allowed a dismissal then.
  std::uint32_t escapePressTime_ = 0;
  bool escapeAllowedAtPress_ = true;

  LiveCounter<GtkScreen> counted_;
  // Its place in the window's presentation stack; goes first, while root_ still lives.
  platform::PresentationNode stack_{*this};
};

}  // namespace vemba::linux_platform
