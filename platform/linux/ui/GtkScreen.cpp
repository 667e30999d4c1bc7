#include "GtkScreen.h"

#include <gtk/gtk.h>

#include <algorithm>

#include "GtkAnimation.h"
#include "GtkApplication.h"
#include "GtkControls.h"
#include "GtkCss.h"
#include "GtkViewBase.h"
#include "platform/LogSink.h"
#include "platform/Services.h"

namespace vemba::linux_platform {

namespace {

constexpr const char* kOverlayMark = "vemba-presentation-overlay";
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

// The overlay that holds `window`'s content and everything presented over it; made (wrapping the
// content) on first use.
GtkWidget* windowOverlay(GtkWindow* window) {
  GtkWidget* child = gtk_window_get_child(window);
  if (child != nullptr && GTK_IS_OVERLAY(child) &&
      g_object_get_data(G_OBJECT(child), kOverlayMark) != nullptr) {
    return child;
  }
  GtkWidget* overlay = gtk_overlay_new();
  g_object_set_data(G_OBJECT(overlay), kOverlayMark, overlay);
  if (child != nullptr) {
    g_object_ref(child);
    gtk_window_set_child(window, overlay);
    gtk_overlay_set_child(GTK_OVERLAY(overlay), child);
    g_object_unref(child);
  } else {
    gtk_window_set_child(window, overlay);
  }
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
  screen->windowOfOwn_ = window;
  // Released when the window is finalised; the screen then touches the window no more.
  g_object_set_data_full(
      G_OBJECT(window), kWindowScreenKey, new Strong(screen),
      +[](gpointer data) { delete static_cast<Strong*>(data); });
  return screen;
}

GtkScreen::~GtkScreen() {
  // A presenter that goes away (its window was destroyed) takes what it presents down quietly.
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
  if (windowOfOwn_ != nullptr) {
    view_.reset();  // the overlay stays in (or went with) the window
  }
}

GtkScreen& GtkScreen::of(const platform::PresentationNode& node) {
  return static_cast<GtkScreen&>(node.owner());
}

GtkScreen* GtkScreen::container() const {
  const platform::PresentationNode* container = stack_.container();
  return container != nullptr ? &of(*container) : nullptr;
}

GtkWindow* GtkScreen::window() const {
  if (windowOfOwn_ != nullptr) {
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
  if (windowOfOwn_ != nullptr) {
    view_ = std::make_shared<GtkWidgetView>(windowOverlay(windowOfOwn_));
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
    gtk_widget_set_halign(panel_, GTK_ALIGN_CENTER);
    gtk_widget_set_valign(panel_, GTK_ALIGN_FILL);
    gtk_widget_set_margin_top(panel_, kSheetTopInset);
    const int available = gtk_widget_get_width(overlay);
    gtk_widget_set_size_request(
        panel_, available > 0 ? std::min(kSheetMaxWidth, available) : kSheetMaxWidth, -1);
    gtk_widget_set_hexpand(content, TRUE);
    gtk_widget_set_vexpand(content, TRUE);
    gtk_box_append(GTK_BOX(panel_), content);
    gtk_overlay_add_overlay(GTK_OVERLAY(presentation_), panel_);

    // Escape anywhere in the window dismisses the topmost sheet.
    GtkEventController* keys = gtk_event_controller_key_new();
    gtk_event_controller_set_propagation_phase(keys, GTK_PHASE_CAPTURE);
    g_signal_connect_data(keys, "key-pressed",
                          G_CALLBACK(+[](GtkEventControllerKey* /*c*/, guint keyval, guint /*code*/,
                                         GdkModifierType /*state*/, gpointer data) -> gboolean {
                            const auto self = static_cast<WeakScreen*>(data)->lock();
                            if (keyval != GDK_KEY_Escape || !self) {
                              return FALSE;
                            }
                            return self->userDismiss() ? TRUE : FALSE;
                          }),
                          new WeakScreen(weak_from_this()), deleteWeakScreen, G_CONNECT_DEFAULT);
    escapeWindow_ = GTK_WIDGET(gtk_widget_get_root(overlay));
    g_object_add_weak_pointer(G_OBJECT(escapeWindow_), reinterpret_cast<gpointer*>(&escapeWindow_));
    gtk_widget_add_controller(escapeWindow_, keys);
    escapeController_ = keys;
  }
  gtk_overlay_add_overlay(GTK_OVERLAY(overlay), presentation_);
}

void GtkScreen::tearDownPresentation() {
  if (escapeWindow_ != nullptr) {
    gtk_widget_remove_controller(escapeWindow_, GTK_EVENT_CONTROLLER(escapeController_));
    g_object_remove_weak_pointer(G_OBJECT(escapeWindow_),
                                 reinterpret_cast<gpointer*>(&escapeWindow_));
    escapeWindow_ = nullptr;
  }
  escapeController_ = nullptr;
  if (presentation_ == nullptr) {
    return;
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

void GtkScreen::presentScreen(std::shared_ptr<platform::Screen> child, bool animated,
                              std::function<void()> completion) {
  auto gtkChild = std::dynamic_pointer_cast<GtkScreen>(child);
  if (!gtkChild || gtkChild->windowOfOwn_ != nullptr || !stack_.canPresent(gtkChild->stack_)) {
    return;  // as on a phone: nothing happens and the completion never runs
  }
  GtkWindow* target = window();
  if (target == nullptr) {
    if (platform::LogSink* sink = platform::services().log) {
      sink->write(platform::LogSeverity::error, "vemba", "ui", kNoWindowLine);
    }
    return;
  }
  GtkWidget* overlay = windowOverlay(target);
  auto childDelegate = gtkChild->delegate_.lock();
  auto finished = stack_.beginPresentation(gtkChild, gtkChild->stack_, std::move(childDelegate),
                                           std::move(completion));
  gtkChild->appear();
  gtkChild->buildPresentation(overlay);
  GtkWidget* shown = gtkChild->presentation_;
  if (!animated) {
    if (finished) {
      postToMainLoop(std::move(finished));
    }
    return;
  }
  gtk_widget_set_opacity(shown, 0.0);
  runTween(
      shown, kTransitionTween, kTransitionDuration,
      [shown](double t) { gtk_widget_set_opacity(shown, t); },
      [shown, finished = std::move(finished)](bool /*finished*/) {
        gtk_widget_set_opacity(shown, 1.0);
        if (finished) {
          finished();
        }
      });
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

}  // namespace vemba::linux_platform
