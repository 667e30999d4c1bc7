#include "WindowModality.h"

#include <gtk/gtk.h>

#include <algorithm>

namespace vemba::linux_platform {

namespace {

constexpr const char* kRecordKey = "vemba-window-modality";
// On a widget made inert: 1 + the sensitivity the host had given it.
constexpr const char* kInertKey = "vemba-inert-was-sensitive";

void setInert(GtkWidget* widget, bool inert) {
  if (widget == nullptr) {
    return;
  }
  const auto saved = GPOINTER_TO_INT(g_object_get_data(G_OBJECT(widget), kInertKey));
  if (inert && saved == 0) {
    g_object_set_data(G_OBJECT(widget), kInertKey,
                      GINT_TO_POINTER(1 + gtk_widget_get_sensitive(widget)));
    gtk_widget_set_sensitive(widget, FALSE);
  } else if (!inert && saved != 0) {
    g_object_set_data(G_OBJECT(widget), kInertKey, nullptr);
    gtk_widget_set_sensitive(widget, saved - 1);
  }
}

}  // namespace

struct WindowModality::Entry {
  GtkWidget* presentation;
  std::function<GtkWidget*()> focus;
  GWeakRef previousFocus;

  Entry(GtkWidget* widget, std::function<GtkWidget*()> focusOf, GtkWidget* focused)
      : presentation(GTK_WIDGET(g_object_ref(widget))), focus(std::move(focusOf)) {
    g_weak_ref_init(&previousFocus, focused);
  }
  ~Entry() {
    g_weak_ref_clear(&previousFocus);
    g_object_unref(presentation);
  }
  Entry(const Entry&) = delete;
  Entry& operator=(const Entry&) = delete;
};

WindowModality& WindowModality::of(GtkWindow* window) {
  if (auto* record =
          static_cast<WindowModality*>(g_object_get_data(G_OBJECT(window), kRecordKey))) {
    return *record;
  }
  auto* record = new WindowModality(window);
  g_object_set_data_full(
      G_OBJECT(window), kRecordKey, record,
      +[](gpointer data) { delete static_cast<WindowModality*>(data); });
  return *record;
}

WindowModality::WindowModality(GtkWindow* window) : window_(window) {
  g_signal_connect(window, "notify::focus-widget",
                   G_CALLBACK(+[](GtkWindow* changed, GParamSpec* /*spec*/, gpointer /*data*/) {
                     WindowModality::of(changed).focusChanged();
                   }),
                   nullptr);
}

WindowModality::~WindowModality() {
  if (refocusSource_ != 0) {
    g_source_remove(refocusSource_);
  }
}

void WindowModality::push(GtkWidget* presentation, std::function<GtkWidget*()> focus) {
  entries_.push_back(std::make_unique<Entry>(presentation, std::move(focus),
                                             gtk_root_get_focus(GTK_ROOT(window_))));
  apply();
  placeFocus();
}

void WindowModality::remove(GtkWidget* presentation) {
  const auto found = std::find_if(entries_.begin(), entries_.end(), [presentation](const auto& e) {
    return e->presentation == presentation;
  });
  if (found == entries_.end()) {
    return;
  }
  const bool wasTop = found + 1 == entries_.end();
  auto* previous = static_cast<GtkWidget*>(g_weak_ref_get(&(*found)->previousFocus));
  entries_.erase(found);
  apply();
  if (wasTop) {
    // Back to where the focus was before this presentation came, while that is still there and
    // may take it; otherwise into what is now on top.
    const bool restored = previous != nullptr &&
                          gtk_widget_get_root(previous) == GTK_ROOT(window_) &&
                          gtk_widget_is_sensitive(previous) && gtk_widget_grab_focus(previous);
    if (!restored && !entries_.empty()) {
      placeFocus();
    }
  }
  g_clear_object(&previous);
}

void WindowModality::apply() {
  const bool modal = !entries_.empty();
  GtkWidget* child = gtk_window_get_child(window_);
  setInert(child != nullptr && GTK_IS_OVERLAY(child) ? gtk_overlay_get_child(GTK_OVERLAY(child))
                                                     : nullptr,
           modal);
  setInert(gtk_window_get_titlebar(window_), modal);
  for (const auto& entry : entries_) {
    gtk_widget_set_sensitive(entry->presentation, entry == entries_.back() ? TRUE : FALSE);
  }
}

void WindowModality::release(GtkWidget* content) {
  setInert(content, false);
}

void WindowModality::placeFocus() {
  const Entry& top = *entries_.back();
  GtkWidget* preferred = top.focus ? top.focus() : nullptr;
  if (preferred == nullptr || gtk_widget_grab_focus(preferred) == FALSE) {
    gtk_widget_child_focus(top.presentation, GTK_DIR_TAB_FORWARD);
  }
}

// The focus left the top presentation (its focused widget went away, a recovery replaced the
// page): put it back on a later turn, once GTK has settled.
void WindowModality::focusChanged() {
  if (entries_.empty() || refocusSource_ != 0) {
    return;
  }
  GtkWidget* focus = gtk_root_get_focus(GTK_ROOT(window_));
  GtkWidget* top = entries_.back()->presentation;
  if (focus != nullptr && (focus == top || gtk_widget_is_ancestor(focus, top))) {
    return;
  }
  refocusSource_ = g_idle_add_full(
      G_PRIORITY_DEFAULT_IDLE,
      +[](gpointer data) -> gboolean {
        auto* window = static_cast<GtkWindow*>(data);
        WindowModality& record = WindowModality::of(window);
        record.refocusSource_ = 0;
        if (record.entries_.empty()) {
          return G_SOURCE_REMOVE;
        }
        GtkWidget* now = gtk_root_get_focus(GTK_ROOT(window));
        GtkWidget* shown = record.entries_.back()->presentation;
        if (now == nullptr || (now != shown && !gtk_widget_is_ancestor(now, shown))) {
          record.placeFocus();
        }
        return G_SOURCE_REMOVE;
      },
      g_object_ref(window_), g_object_unref);
}

}  // namespace vemba::linux_platform
