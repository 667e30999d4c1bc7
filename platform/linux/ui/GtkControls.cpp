#include "GtkControls.h"

#include <gtk/gtk.h>

#include <algorithm>

#include "GtkAnimation.h"
#include "GtkCss.h"

namespace vemba::linux_platform {

namespace {

constexpr const char* kProgressTween = "progress";

}  // namespace

GtkPlainView::GtkPlainView() : GtkViewBase(newContainerWidget()) {}

// --- Button ---

GtkButtonView::GtkButtonView() : GtkViewBase(gtk_button_new()) {
  setCss("base", "padding: 0; min-width: 0; min-height: 0; border: none; box-shadow: none;");
}

GtkButtonView::~GtkButtonView() {
  if (clickedHandler_ != 0) {
    g_signal_handler_disconnect(widget(), clickedHandler_);
  }
}

void GtkButtonView::setTitle(std::string title) {
  gtk_button_set_label(GTK_BUTTON(widget()), title.c_str());
}

std::string GtkButtonView::title() const {
  const char* label = gtk_button_get_label(GTK_BUTTON(widget()));
  return label != nullptr ? label : "";
}

void GtkButtonView::setTitleColor(platform::Color color) {
  setCss("title-color", "color: " + cssColor(color) + ";");
}

void GtkButtonView::setSystemFont(double size, FontWeight weight) {
  setCss("font", "font-size: " + cssNumber(size) +
                     "px; font-weight: " + (weight == FontWeight::bold ? "bold" : "normal") + ";");
}

void GtkButtonView::setAction(std::function<void()> action) {
  action_ = std::move(action);
  if (clickedHandler_ != 0) {
    return;
  }
  using Weak = std::weak_ptr<GtkButtonView>;
  auto onClicked = +[](GtkButton* /*button*/, gpointer data) {
    if (const auto self = static_cast<Weak*>(data)->lock()) {
      // A copy: the action may replace itself.
      const std::function<void()> run = self->action_;
      if (run) {
        run();
      }
    }
  };
  clickedHandler_ = g_signal_connect_data(
      widget(), "clicked", G_CALLBACK(onClicked), new Weak(weak_from_this()),
      +[](gpointer data, GClosure* /*closure*/) { delete static_cast<Weak*>(data); },
      G_CONNECT_DEFAULT);
}

// --- Progress line ---

GtkProgressBarView::GtkProgressBarView() : GtkViewBase(gtk_progress_bar_new()) {
  const std::string flat =
      "min-height: 1px; border: none; box-shadow: none; background-image: none;";
  setCss("line", flat + " padding: 0; margin: 0;");
  setCss(
      "trough",
      flat +
          " min-width: 0; margin: 0; padding: 0; border-radius: 0; background-color: transparent;",
      "trough");
  setCss("progress", flat + " min-width: 0; margin: 0; border-radius: 0;", "progress");
}

void GtkProgressBarView::setProgress(float progress, bool animated) {
  const double from = shownFraction();
  progress_ = std::clamp(progress, 0.0F, 1.0F);
  const double to = progress_;
  GtkWidget* bar = widget();
  if (!animated) {
    stopTween(bar, kProgressTween);
    gtk_progress_bar_set_fraction(GTK_PROGRESS_BAR(bar), to);
    return;
  }
  runTween(bar, kProgressTween, kAnimationDuration,
           [bar, from, to](double t) {
             gtk_progress_bar_set_fraction(GTK_PROGRESS_BAR(bar), from + (to - from) * t);
           },
           {});
}

double GtkProgressBarView::shownFraction() const {
  return gtk_progress_bar_get_fraction(GTK_PROGRESS_BAR(widget()));
}

void GtkProgressBarView::setTintColor(platform::Color color) {
  setCss("tint", "background-color: " + cssColor(color) + ";", "progress");
}

}  // namespace vemba::linux_platform
