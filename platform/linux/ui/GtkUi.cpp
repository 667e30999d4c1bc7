#include "GtkUi.h"

#include <gtk/gtk.h>

#include <string>
#include <utility>

#include "GtkAnimation.h"
#include "GtkApplication.h"
#include "GtkControls.h"
#include "GtkEmitterLayer.h"
#include "GtkScreen.h"
#include "GtkViewBase.h"
#include "platform/LogSink.h"
#include "platform/Services.h"

namespace vemba::linux_platform {

namespace {

constexpr std::string_view kLogCategory = "ui";
constexpr std::string_view kNoDisplayLine =
    "GTK cannot be initialised (no display?): nothing will be shown";
constexpr std::string_view kUnplacedConstraintLine =
    "a layout constraint between views with no common superview was ignored";

using Attribute = platform::LayoutAnchor::Attribute;

void log(platform::LogSeverity severity, std::string_view line) {
  if (platform::LogSink* sink = platform::services().log) {
    sink->write(severity, platform::kLibraryLogSubsystem, kLogCategory, line);
  }
}

GtkConstraintAttribute gtkAttribute(Attribute attribute) {
  switch (attribute) {
    case Attribute::top:
      return GTK_CONSTRAINT_ATTRIBUTE_TOP;
    case Attribute::bottom:
      return GTK_CONSTRAINT_ATTRIBUTE_BOTTOM;
    case Attribute::leading:
      return GTK_CONSTRAINT_ATTRIBUTE_START;
    case Attribute::trailing:
      return GTK_CONSTRAINT_ATTRIBUTE_END;
    case Attribute::width:
      return GTK_CONSTRAINT_ATTRIBUTE_WIDTH;
    case Attribute::height:
      return GTK_CONSTRAINT_ATTRIBUTE_HEIGHT;
  }
  return GTK_CONSTRAINT_ATTRIBUTE_NONE;
}

bool isAncestor(const platform::View* ancestor, const platform::View* view) {
  for (const platform::View* up = view->superview(); up != nullptr; up = up->superview()) {
    if (up == ancestor) {
      return true;
    }
  }
  return false;
}

// Adds one constraint to the GtkConstraintLayout of the view that can hold it: the superview of
// both views, or the one view when the other is its subview. A constraint to an ancestor further
// up is held by the first view's superview against its own edge: exact while the views in
// between are flush with that ancestor on that edge (as a bar spanning its screen's width is).
void activateOne(const platform::LayoutConstraint& constraint) {
  platform::View* first = constraint.first.view;
  if (first == nullptr) {
    return;
  }
  GtkViewState* firstState = GtkViewState::of(*first);
  platform::View* superview = first->superview();
  const GtkConstraintAttribute firstAttribute = gtkAttribute(constraint.first.attribute);
  if (firstState == nullptr || superview == nullptr) {
    log(platform::LogSeverity::debug, kUnplacedConstraintLine);
    return;
  }
  GtkViewState* owner = GtkViewState::of(*superview);
  GtkConstraintLayout* layout = nullptr;
  if (owner != nullptr) {
    GtkLayoutManager* manager = gtk_widget_get_layout_manager(owner->widget());
    layout = GTK_IS_CONSTRAINT_LAYOUT(manager) ? GTK_CONSTRAINT_LAYOUT(manager) : nullptr;
  }
  if (layout == nullptr) {
    log(platform::LogSeverity::debug, kUnplacedConstraintLine);
    return;
  }
  auto* target = GTK_CONSTRAINT_TARGET(firstState->widget());
  GtkConstraint* made = nullptr;
  GtkViewState* other = nullptr;
  if (!constraint.second) {
    made = gtk_constraint_new_constant(target, firstAttribute, GTK_CONSTRAINT_RELATION_EQ,
                                       constraint.constant, GTK_CONSTRAINT_STRENGTH_REQUIRED);
  } else {
    platform::View* second = constraint.second->view;
    const GtkConstraintAttribute secondAttribute = gtkAttribute(constraint.second->attribute);
    GtkConstraintTarget* source = nullptr;  // the layout's own widget: the superview
    if (second != superview && !isAncestor(second, first)) {
      if (second == nullptr || second->superview() != superview) {
        log(platform::LogSeverity::debug, kUnplacedConstraintLine);
        return;
      }
      other = GtkViewState::of(*second);  // a sibling
      if (other == nullptr) {
        return;
      }
      source = GTK_CONSTRAINT_TARGET(other->widget());
    }
    made = gtk_constraint_new(target, firstAttribute, GTK_CONSTRAINT_RELATION_EQ, source,
                              secondAttribute, 1.0, constraint.constant,
                              GTK_CONSTRAINT_STRENGTH_REQUIRED);
  }
  g_object_ref(made);
  gtk_constraint_layout_add_constraint(layout, made);
  owner->rememberConstraint(made, other);
}

}  // namespace

std::shared_ptr<platform::Screen> GtkUi::createScreen() {
  return GtkScreen::createPlain();
}

std::shared_ptr<platform::Screen> GtkUi::createNavigationScreen(
    std::shared_ptr<platform::Screen> root) {
  return GtkScreen::createNavigation(std::move(root));
}

std::shared_ptr<platform::View> GtkUi::createView() {
  return std::make_shared<GtkPlainView>();
}

std::shared_ptr<platform::Button> GtkUi::createButton() {
  return std::make_shared<GtkButtonView>();
}

std::shared_ptr<platform::ProgressBar> GtkUi::createProgressBar() {
  return std::make_shared<GtkProgressBarView>();
}

std::shared_ptr<platform::EmitterLayer> GtkUi::createEmitterLayer() {
  return std::make_shared<GtkEmitterLayer>();
}

void GtkUi::activate(const std::vector<platform::LayoutConstraint>& constraints) {
  for (const platform::LayoutConstraint& constraint : constraints) {
    activateOne(constraint);
  }
}

void GtkUi::animate(std::chrono::duration<double> duration, std::function<void()> animations,
                    std::function<void(bool finished)> completion) {
  const AnimationBlock block(duration, std::move(completion));
  if (animations) {
    animations();
  }
}

std::chrono::duration<double> GtkUi::navigationBarHideShowDuration() const {
  return GtkScreen::kBarHideShowDuration;
}

double GtkUi::currentMediaTime() const {
  return static_cast<double>(g_get_monotonic_time()) / 1e6;
}

bool gtkStarted() {
  return gtk_is_initialized() != FALSE;
}

bool startGtk() {
  // A failed initialisation is not retried.
  static const bool started = [] {
    if (gtk_init_check() == FALSE) {
      log(platform::LogSeverity::error, kNoDisplayLine);
      return false;
    }
    watchWindowActivations();
    return true;
  }();
  return started;
}

}  // namespace vemba::linux_platform
