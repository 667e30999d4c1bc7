#include "GtkScreen.h"

#include <gtk/gtk.h>

#include <algorithm>

#include "GtkAnimation.h"
#include "GtkApplication.h"
#include "GtkControls.h"
#include "GtkCss.h"
#include "GtkViewBase.h"
#include "WindowModality.h"
#include "platform/LogSink.h"
#include "platform/Services.h"

namespace vemba::linux_platform {

namespace {

constexpr const char* kOverlayKey = "vemba-window-overlay";
constexpr const char* kWindowScreenKey = "vemba-window-screen";
constexpr const char* kTransitionTween = "transition";
constexpr const char* kBackdropCss = "background-color: rgba(0, 0, 0, 0.4);";
constexpr const char* kPanelCss =
    "background-color: @theme_base_color; border-top-left-radius: 12px; "
    "border-top-right-radius: 12px; box-shadow: 0 0 12px rgba(0, 0, 0, 0.3);";
// "xmark" names the platform's close glyph; the theme's symbolic close icon is its equivalent.
constexpr const char* kCloseIconName = "window-close-symbolic";
constexpr std::string_view kNoWindowLine =
    "a screen that is shown in no window cannot present another; nothing is presented";

using WeakScreen = std::weak_ptr<GtkScreen>;

void deleteWeakScreen(gpointer data, GClosure* /*closure*/) {
  delete static_cast<WeakScreen*>(data);
}

// Makes `overlay` the window's child again with `content` (may be null) as what it covers.
void wrap(GtkWindow* window, GtkWidget* overlay, GtkWidget* content) {
  if (content != nullptr) {
    g_object_ref(content);
  }
  gtk_window_set_child(window, overlay);
  if (content != nullptr) {
    gtk_overlay_set_child(GTK_OVERLAY(overlay), content);
    g_object_unref(content);
  }
}

// The host put other content into the window (or none): it goes beneath what is presented, and
// the content it replaced gets back what the presentations had taken from it.
void onWindowChildChanged(GtkWindow* window, GParamSpec* /*spec*/, gpointer data) {
  auto* overlay = static_cast<GtkWidget*>(data);
  GtkWidget* content = gtk_window_get_child(window);
  if (content == overlay) {
    return;
  }
  if (GtkWidget* replaced = gtk_overlay_get_child(GTK_OVERLAY(overlay))) {
    WindowModality::release(replaced);
    gtk_overlay_set_child(GTK_OVERLAY(overlay), nullptr);
  }
  wrap(window, overlay, content);  // notifies again, with the overlay as the child
  WindowModality::of(window).apply();
}

// The overlay that holds `window`'s content and everything presented over it; made (wrapping the
// content) on first use, and kept with the window.
GtkWidget* windowOverlay(GtkWindow* window) {
  if (auto* overlay = static_cast<GtkWidget*>(g_object_get_data(G_OBJECT(window), kOverlayKey))) {
    return overlay;
  }
  GtkWidget* overlay = gtk_overlay_new();
  g_object_ref_sink(overlay);
  g_object_set_data_full(G_OBJECT(window), kOverlayKey, overlay, g_object_unref);
  wrap(window, overlay, gtk_window_get_child(window));
  g_signal_connect(window, "notify::child", G_CALLBACK(onWindowChildChanged), overlay);
  return overlay;
}

void removeFromParent(GtkWidget* widget) {
  GtkWidget* parent = gtk_widget_get_parent(widget);
  if (parent == nullptr) {
    return;
  }
  if (GTK_IS_OVERLAY(parent) && gtk_overlay_get_child(GTK_OVERLAY(parent)) == widget) {
    gtk_overlay_set_child(GTK_OVERLAY(parent), nullptr);
  } else if (GTK_IS_OVERLAY(parent)) {
    gtk_overlay_remove_overlay(GTK_OVERLAY(parent), widget);
  } else if (GTK_IS_BOX(parent)) {
    gtk_box_remove(GTK_BOX(parent), widget);
  } else {
    gtk_widget_unparent(widget);
  }
}

GtkWidget* newBarItemButton(const platform::BarButtonItem& item) {
  GtkWidget* button = gtk_button_new_from_icon_name(kCloseIconName);
  gtk_widget_set_tooltip_text(button, "Close");
  if (item.kind == platform::BarButtonItem::Kind::image &&
      item.systemImageName.find("circle") != std::string::npos) {
    gtk_widget_add_css_class(button, "circular");
  } else {
    gtk_widget_add_css_class(button, "flat");
  }
  if (item.tintColor) {
    styleWidget(button, "color: " + cssColor(*item.tintColor) + ";");
  }
  if (item.action) {
    using Action = std::function<void()>;
    auto onClicked = +[](GtkButton* /*button*/, gpointer data) {
      const Action action = *static_cast<Action*>(data);  // a copy: the action may end the bar
      action();
    };
    g_signal_connect_data(
        button, "clicked", G_CALLBACK(onClicked), new Action(item.action),
        +[](gpointer data, GClosure* /*closure*/) { delete static_cast<Action*>(data); },
        G_CONNECT_DEFAULT);
  }
  return button;
}

}  // namespace

GtkScreen::GtkScreen(Kind kind) : kind_(kind) {}

std::shared_ptr<GtkScreen> GtkScreen::createPlain() {
  return std::shared_ptr<GtkScreen>(new GtkScreen(Kind::plain));
}

std::shared_ptr<GtkScreen> GtkScreen::createNavigation(std::shared_ptr<platform::Screen> root) {
  auto gtkRoot = std::dynamic_pointer_cast<GtkScreen>(root);
  if (!gtkRoot || gtkRoot->stack_.container() != nullptr || gtkRoot->kind_ != Kind::plain) {
    return nullptr;
  }
  std::shared_ptr<GtkScreen> container(new GtkScreen(Kind::navigation));
  container->root_ = gtkRoot;
  gtkRoot->stack_.setContainer(container->stack_);
  return container;
}

std::shared_ptr<GtkScreen> GtkScreen::forWindow(GtkWindow* window) {
  if (window == nullptr) {
    return nullptr;
  }
  using Strong = std::shared_ptr<GtkScreen>;
  if (auto* held = static_cast<Strong*>(g_object_get_data(G_OBJECT(window), kWindowScreenKey))) {
    return *held;
  }
  watchWindowActivations();  // the host's windows are known from here on
  Strong screen(new GtkScreen(Kind::plain));
  screen->isWindowRoot_ = true;
  screen->windowOfOwn_ = window;
  // Released when the window is finalised; the screen then touches the window no more.
  g_object_set_data_full(
      G_OBJECT(window), kWindowScreenKey, new Strong(screen),
      +[](gpointer data) { delete static_cast<Strong*>(data); });
  g_signal_connect(
      window, "destroy", G_CALLBACK(+[](GtkWidget* closed, gpointer /*data*/) {
        auto* held = static_cast<Strong*>(g_object_get_data(G_OBJECT(closed), kWindowScreenKey));
        if (held != nullptr) {
          (*held)->windowDidClose();
        }
      }),
      nullptr);
  return screen;
}

GtkScreen::~GtkScreen() {
  // A presenter that goes away takes what it presents down quietly.
  for (const platform::PresentationNode* node = stack_.presentedNode(); node != nullptr;
       node = node->presentedNode()) {
    of(*node).tearDownPresentation();
  }
  tearDownPresentation();
  if (root_) {
    if (view_ != nullptr && root_->view_ != nullptr) {
      removeFromParent(gtkWidgetOf(*root_->view_));
    }
  }
  if (isWindowRoot_) {
    view_.reset();  // the overlay stays in (or went with) the window
  }
}

void GtkScreen::windowDidClose() {
  windowOfOwn_ = nullptr;
  if (!stack_.presentedNode()) {
    return;
  }
  // On a later turn, so nobody is called back inside the host's closing of its window; until
  // then this screen, and through it everything it presents, stays alive.
  postToMainLoop([keep = shared_from_this()] {
    for (;;) {
      platform::PresentationNode* top = keep->stack_.presentedNode();
      if (top == nullptr) {
        return;
      }
      while (top->presentedNode() != nullptr) {
        top = top->presentedNode();
      }
      GtkScreen& screen = of(*top);
      const auto alive = screen.shared_from_this();
      const auto own = screen.delegate_.lock();
      const auto rootDelegate = screen.root_ ? screen.root_->delegate_.lock() : nullptr;
      const platform::PresentationNode::Dismissal ending = top->dismissForClosedWindow(
          screen.style_, screen.presentationDelegate_, {own.get(), rootDelegate.get()});
      ending.presenter->endDismissal(ending.id, [](platform::Screen& gone) {
        static_cast<GtkScreen&>(gone).tearDownPresentation();
      });
      if (screen.stack_.presentingNode() != nullptr) {
        return;  // it did not leave: stop rather than loop
      }
    }
  });
}

GtkScreen& GtkScreen::of(const platform::PresentationNode& node) {
  return static_cast<GtkScreen&>(node.owner());
}

GtkScreen* GtkScreen::container() const {
  const platform::PresentationNode* container = stack_.container();
  return container != nullptr ? &of(*container) : nullptr;
}

GtkWindow* GtkScreen::window() const {
  if (isWindowRoot_) {
    return windowOfOwn_;
  }
  if (const platform::PresentationNode* presenter = stack_.presentingNode()) {
    return of(*presenter).window();
  }
  if (const GtkScreen* container = this->container()) {
    return container->window();
  }
  if (view_ != nullptr) {
    GtkRoot* root = gtk_widget_get_root(gtkWidgetOf(*view_));
    if (root != nullptr && GTK_IS_WINDOW(root)) {
      return GTK_WINDOW(root);
    }
  }
  return nullptr;
}

platform::View& GtkScreen::view() {
  if (view_ != nullptr) {
    return *view_;
  }
  if (isWindowRoot_) {
    if (windowOfOwn_ == nullptr) {
      view_ = std::make_shared<GtkPlainView>();  // the window has closed
    } else {
      view_ = std::make_shared<GtkWidgetView>(windowOverlay(windowOfOwn_));
    }
  } else if (kind_ == Kind::navigation) {
    GtkWidget* column = gtk_box_new(GTK_ORIENTATION_VERTICAL, 0);
    headerBar_ = gtk_header_bar_new();
    gtk_header_bar_set_show_title_buttons(GTK_HEADER_BAR(headerBar_), FALSE);
    titleLabel_ = gtk_label_new("");
    gtk_widget_add_css_class(titleLabel_, "title");
    gtk_header_bar_set_title_widget(GTK_HEADER_BAR(headerBar_), titleLabel_);
    revealer_ = gtk_revealer_new();
    gtk_revealer_set_transition_type(GTK_REVEALER(revealer_),
                                     GTK_REVEALER_TRANSITION_TYPE_SLIDE_DOWN);
    gtk_revealer_set_transition_duration(GTK_REVEALER(revealer_), 0);
    gtk_revealer_set_reveal_child(GTK_REVEALER(revealer_), barHidden_ ? FALSE : TRUE);
    gtk_revealer_set_child(GTK_REVEALER(revealer_), headerBar_);
    gtk_box_append(GTK_BOX(column), revealer_);
    view_ = std::make_shared<GtkWidgetView>(column);
    GtkWidget* content = gtkWidgetOf(root_->view());
    gtk_widget_set_hexpand(content, TRUE);
    gtk_widget_set_vexpand(content, TRUE);
    gtk_box_append(GTK_BOX(column), content);
    updateBar();
  } else {
    view_ = std::make_shared<GtkPlainView>();
  }
  if (const auto delegate = delegate_.lock()) {
    delegate->viewDidLoad();
  }
  return *view_;
}

void GtkScreen::setDelegate(std::weak_ptr<platform::ScreenDelegate> delegate) {
  delegate_ = std::move(delegate);
}

void GtkScreen::setPresentationDelegate(std::weak_ptr<platform::PresentationDelegate> delegate) {
  presentationDelegate_ = std::move(delegate);
}

void GtkScreen::setTitle(std::string title) {
  title_ = std::move(title);
  if (GtkScreen* container = this->container()) {
    container->updateBar();
  }
}

void GtkScreen::setRightBarButtonItem(std::optional<platform::BarButtonItem> item) {
  rightItem_ = std::move(item);
  if (GtkScreen* container = this->container()) {
    container->updateBar();
  }
}

void GtkScreen::setModalPresentationStyle(platform::ModalPresentationStyle style) {
  style_ = style;
}

// The bar shows its root's title and right item, as a phone's bar shows its top screen's.
void GtkScreen::updateBar() {
  if (headerBar_ == nullptr || !root_) {
    return;
  }
  gtk_label_set_text(GTK_LABEL(titleLabel_), root_->title_.c_str());
  if (rightButton_ != nullptr) {
    gtk_header_bar_remove(GTK_HEADER_BAR(headerBar_), rightButton_);
    rightButton_ = nullptr;
  }
  if (root_->rightItem_) {
    rightButton_ = newBarItemButton(*root_->rightItem_);
    gtk_header_bar_pack_end(GTK_HEADER_BAR(headerBar_), rightButton_);
  }
}

void GtkScreen::setNavigationBarHidden(bool hidden, bool animated) {
  if (kind_ != Kind::navigation) {
    return;
  }
  barHidden_ = hidden;
  if (revealer_ != nullptr) {
    const auto duration = animated ? kBarHideShowDuration : std::chrono::milliseconds(0);
    gtk_revealer_set_transition_duration(GTK_REVEALER(revealer_),
                                         static_cast<guint>(duration.count()));
    gtk_revealer_set_reveal_child(GTK_REVEALER(revealer_), hidden ? FALSE : TRUE);
  }
}

std::shared_ptr<platform::Screen> GtkScreen::visibleScreen() const {
  if (kind_ != Kind::navigation) {
    return nullptr;
  }
  if (const auto& presented = stack_.presented()) {
    return presented;
  }
  return root_;
}

// --- Presentation ---

void GtkScreen::appear() {
  view();
  if (const auto delegate = delegate_.lock()) {
    delegate->viewWillAppear();
  }
  if (root_) {
    if (const auto delegate = root_->delegate_.lock()) {
      delegate->viewWillAppear();
    }
  }
}

GtkWidget* GtkScreen::contentWidget() {
  return gtkWidgetOf(view());
}

GtkWidget* GtkScreen::preferredFocusWidget() {
  for (const auto& delegate : {delegate_.lock(), root_ ? root_->delegate_.lock() : nullptr}) {
    if (platform::View* view = delegate ? delegate->preferredFocusView() : nullptr) {
      return gtkWidgetOf(*view);
    }
  }
  return nullptr;
}

void GtkScreen::buildPresentation(GtkWidget* overlay) {
  GtkWidget* content = contentWidget();
  presentation_ = gtk_overlay_new();
  g_object_ref_sink(presentation_);
  if (style_ == platform::ModalPresentationStyle::fullScreen) {
    gtk_overlay_set_child(GTK_OVERLAY(presentation_), content);
  } else {
    backdrop_ = gtk_box_new(GTK_ORIENTATION_VERTICAL, 0);
    styleWidget(backdrop_, kBackdropCss);
    gtk_overlay_set_child(GTK_OVERLAY(presentation_), backdrop_);
    GtkGesture* click = gtk_gesture_click_new();
    g_signal_connect_data(click, "released",
                          G_CALLBACK(+[](GtkGestureClick* /*g*/, int /*n*/, double /*x*/,
                                         double /*y*/, gpointer data) {
                            if (const auto self = static_cast<WeakScreen*>(data)->lock()) {
                              self->userDismiss();
                            }
                          }),
                          new WeakScreen(weak_from_this()), deleteWeakScreen, G_CONNECT_DEFAULT);
    gtk_widget_add_controller(backdrop_, GTK_EVENT_CONTROLLER(click));

    panel_ = gtk_box_new(GTK_ORIENTATION_VERTICAL, 0);
    styleWidget(panel_, kPanelCss);
    gtk_widget_set_overflow(panel_, GTK_OVERFLOW_HIDDEN);
    gtk_widget_set_hexpand(content, TRUE);
    gtk_widget_set_vexpand(content, TRUE);
    gtk_box_append(GTK_BOX(panel_), content);
    gtk_overlay_add_overlay(GTK_OVERLAY(presentation_), panel_);
    // Placed at every allocation, so the panel follows the window's size.
    g_signal_connect(presentation_, "get-child-position",
                     G_CALLBACK(+[](GtkOverlay* sheet, GtkWidget* child, GdkRectangle* allocation,
                                    gpointer /*data*/) -> gboolean {
                       if (child == gtk_overlay_get_child(sheet)) {
                         return FALSE;
                       }
                       const int width = gtk_widget_get_width(GTK_WIDGET(sheet));
                       const int height = gtk_widget_get_height(GTK_WIDGET(sheet));
                       allocation->width = std::min(kSheetMaxWidth, width);
                       allocation->x = (width - allocation->width) / 2;
                       allocation->y = std::min(kSheetTopInset, height);
                       allocation->height = height - allocation->y;
                       return TRUE;
                     }),
                     nullptr);
  }
  // Escape reaches the focused content (the page) first. WebKit hands a key the page left
  // unhandled back to GTK, which dispatches it again: it then bubbles up to here and is the
  // user's escape gesture. Whether the page showed a modal of its own is taken when the key was
  // pressed (the capture phase of the first dispatch), since a page may close its modal on that
  // very key and still leave the key unhandled.
  onEscape(GTK_PHASE_CAPTURE, [](GtkScreen& self, guint32 time) {
    if (time != self.escapePressTime_) {
      self.escapePressTime_ = time;
      const auto asked = self.presentationDelegate_.lock();
      self.escapeAllowedAtPress_ = !asked || asked->presentationControllerShouldDismiss();
    }
    return false;
  });
  onEscape(GTK_PHASE_BUBBLE, [](GtkScreen& self, guint32 time) {
    if (time == self.escapePressTime_ && !self.escapeAllowedAtPress_) {
      return true;  // it closed the page's own modal
    }
    return self.escape();
  });
  gtk_overlay_add_overlay(GTK_OVERLAY(overlay), presentation_);
}

void GtkScreen::onEscape(int phase, EscapeHandler handler) {
  struct Target {
    WeakScreen screen;
    EscapeHandler handler;
  };
  GtkEventController* keys = gtk_event_controller_key_new();
  gtk_event_controller_set_propagation_phase(keys, static_cast<GtkPropagationPhase>(phase));
  g_signal_connect_data(
      keys, "key-pressed",
      G_CALLBACK(+[](GtkEventControllerKey* controller, guint keyval, guint /*code*/,
                     GdkModifierType /*state*/, gpointer data) -> gboolean {
        const auto* target = static_cast<Target*>(data);
        const auto self = target->screen.lock();
        if (keyval != GDK_KEY_Escape || !self) {
          return FALSE;
        }
        const guint32 time =
            gtk_event_controller_get_current_event_time(GTK_EVENT_CONTROLLER(controller));
        return target->handler(*self, time) ? TRUE : FALSE;
      }),
      new Target{weak_from_this(), handler},
      +[](gpointer data, GClosure* /*closure*/) { delete static_cast<Target*>(data); },
      G_CONNECT_DEFAULT);
  gtk_widget_add_controller(presentation_, keys);
}

void GtkScreen::tearDownPresentation() {
  if (presentation_ == nullptr) {
    return;
  }
  if (modalWindow_ != nullptr) {
    WindowModality::of(modalWindow_).remove(presentation_);
    g_object_remove_weak_pointer(G_OBJECT(modalWindow_),
                                 reinterpret_cast<gpointer*>(&modalWindow_));
    modalWindow_ = nullptr;
  }
  stopTween(presentation_, kTransitionTween);
  // The root view leaves the presentation's widgets so the screen can be presented again.
  if (view_ != nullptr) {
    removeFromParent(gtkWidgetOf(*view_));
  }
  removeFromParent(presentation_);
  g_object_unref(presentation_);
  presentation_ = nullptr;
  panel_ = nullptr;
  backdrop_ = nullptr;
}

bool GtkScreen::presentScreen(std::shared_ptr<platform::Screen> child, bool animated,
                              std::function<void()> completion) {
  auto gtkChild = std::dynamic_pointer_cast<GtkScreen>(child);
  if (!gtkChild || gtkChild->isWindowRoot_ || !stack_.canPresent(gtkChild->stack_)) {
    return false;  // as on a phone: nothing happens and the completion never runs
  }
  GtkWindow* target = window();
  if (target == nullptr) {
    if (platform::LogSink* sink = platform::services().log) {
      sink->write(platform::LogSeverity::error, platform::kLibraryLogSubsystem, "ui",
                  kNoWindowLine);
    }
    return false;
  }
  GtkWidget* overlay = windowOverlay(target);
  auto childDelegate = gtkChild->delegate_.lock();
  auto finished = stack_.beginPresentation(gtkChild, gtkChild->stack_, std::move(childDelegate),
                                           std::move(completion));
  gtkChild->appear();
  gtkChild->buildPresentation(overlay);
  GtkWidget* shown = gtkChild->presentation_;
  gtkChild->modalWindow_ = target;
  g_object_add_weak_pointer(G_OBJECT(target), reinterpret_cast<gpointer*>(&gtkChild->modalWindow_));
  WindowModality::of(target).push(shown, [weakChild = WeakScreen(gtkChild)]() -> GtkWidget* {
    const auto presented = weakChild.lock();
    return presented ? presented->preferredFocusWidget() : nullptr;
  });
  if (!animated) {
    if (finished) {
      postToMainLoop(std::move(finished));
    }
    return true;
  }
  // A sheet's panel is there at once and only its backdrop fades in: fading the panel would draw
  // the page (still loading) through an offscreen layer at every frame of the transition, which
  // on a machine without a GPU slows the load itself. A full-screen screen fades as a whole.
  GtkWidget* faded = gtkChild->backdrop_ != nullptr ? gtkChild->backdrop_ : shown;
  gtk_widget_set_opacity(faded, 0.0);
  runTween(
      shown, kTransitionTween, kTransitionDuration,
      [faded](double t) { gtk_widget_set_opacity(faded, t); },
      [faded, finished = std::move(finished)](bool /*finished*/) {
        gtk_widget_set_opacity(faded, 1.0);
        if (finished) {
          finished();
        }
      });
  return true;
}

void GtkScreen::dismiss(bool animated, std::function<void()> completion) {
  platform::PresentationNode* presenter = stack_.dismissalPresenter();
  if (presenter == nullptr) {
    if (completion) {
      postToMainLoop(std::move(completion));
    }
    return;
  }
  if (const auto dismissal = presenter->beginDismissal(std::move(completion))) {
    of(*presenter).runDismissal(dismissal->id, animated);
  }
}

// Runs the transition of dismissal `id` of what this screen presents, then ends it.
void GtkScreen::runDismissal(std::uint64_t id, bool animated) {
  const auto keep = shared_from_this();
  auto end = [keep, id] {
    keep->stack_.endDismissal(id, [](platform::Screen& screen) {
      static_cast<GtkScreen&>(screen).tearDownPresentation();
    });
  };
  // A screen whose window went away has no widgets left to fade.
  GtkWidget* shown = of(*stack_.presentedNode()).presentation_;
  if (!animated || shown == nullptr) {
    postToMainLoop(std::move(end));
    return;
  }
  const WeakScreen weakPresenter = keep;
  runTween(
      shown, kTransitionTween, kTransitionDuration,
      [weakPresenter](double t) {
        const auto self = weakPresenter.lock();
        if (!self) {
          return;
        }
        for (const platform::PresentationNode* node = self->stack_.presentedNode(); node != nullptr;
             node = node->presentedNode()) {
          if (GtkWidget* widget = of(*node).presentation_) {
            gtk_widget_set_opacity(widget, 1.0 - t);
          }
        }
      },
      [end = std::move(end)](bool /*finished*/) { end(); });
}

bool GtkScreen::userDismiss() {
  const auto dismissal = stack_.beginUserDismissal(style_, presentationDelegate_);
  if (!dismissal) {
    return false;
  }
  of(*dismissal->presenter).runDismissal(dismissal->id, /*animated=*/true);
  return true;
}

bool GtkScreen::escape() {
  const auto own = delegate_.lock();
  const auto rootDelegate = root_ ? root_->delegate_.lock() : nullptr;
  const auto escape = stack_.escape(style_, presentationDelegate_, {own.get(), rootDelegate.get()});
  if (escape.dismissal) {
    of(*escape.dismissal->presenter).runDismissal(escape.dismissal->id, /*animated=*/true);
  }
  return escape.handled;
}

}  // namespace vemba::linux_platform
