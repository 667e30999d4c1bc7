#include "GtkViewBase.h"

#include <gtk/gtk.h>

#include <algorithm>
#include <string>

#include "GtkAnimation.h"
#include "GtkCss.h"

namespace vemba::linux_platform {

namespace {

GtkConstraintLayout* constraintLayoutOf(GtkWidget* widget) {
  if (widget == nullptr) {
    return nullptr;
  }
  GtkLayoutManager* manager = gtk_widget_get_layout_manager(widget);
  return GTK_IS_CONSTRAINT_LAYOUT(manager) ? GTK_CONSTRAINT_LAYOUT(manager) : nullptr;
}

// Adds `constraint` to `layout` and keeps a reference for its later removal.
GtkConstraint* addConstraint(GtkConstraintLayout* layout, GtkConstraint* constraint) {
  g_object_ref(constraint);
  gtk_constraint_layout_add_constraint(layout, constraint);
  return constraint;
}

// GtkConstraintLayout drops the constraints of a child that leaves it on its own; only a
// constraint still attached is removed here.
void removeConstraint(GtkConstraintLayout* layout, GtkConstraint* constraint) {
  if (layout != nullptr && gtk_constraint_is_attached(constraint)) {
    gtk_constraint_layout_remove_constraint(layout, constraint);
  }
  g_object_unref(constraint);
}

// Frame constraints yield to activated ones (which are required), as a phone's translated mask
// would be overridden by an explicit constraint on the same edge.
constexpr int kFrameStrength = GTK_CONSTRAINT_STRENGTH_STRONG;

}  // namespace

// A constraint in this view's layout and the (direct child) views it names.
struct GtkViewState::ConstraintRecord {
  GtkConstraint* constraint = nullptr;
  const GtkViewState* other = nullptr;  // a view the constraint names besides its target/source
};

GtkViewState::GtkViewState(GtkWidget* widget, platform::View& self)
    : widget_(widget), self_(&self) {
  g_object_ref_sink(widget_);
}

GtkViewState::~GtkViewState() {
  for (const auto& child : subviews_) {
    if (GtkViewState* state = of(*child)) {
      state->clearFrameConstraints();
      state->superview_ = nullptr;
      state->superviewState_ = nullptr;
      gtk_widget_unparent(state->widget_);
    }
  }
  for (const auto& record : constraints_) {
    removeConstraint(constraintLayoutOf(widget_), record->constraint);
  }
  constraints_.clear();
  for (const auto& layer : sublayers_) {
    if (auto* gtkLayer = dynamic_cast<GtkLayerWidget*>(layer.get())) {
      gtkLayer->holder = nullptr;
      gtk_widget_unparent(gtkLayer->layerWidget());
    }
  }
  stopAnimations(widget_);
  if (gtk_widget_get_parent(widget_) != nullptr) {
    gtk_widget_unparent(widget_);
  }
  if (css_ != nullptr) {
    gtk_style_context_remove_provider_for_display(gtk_widget_get_display(widget_),
                                                  GTK_STYLE_PROVIDER(css_));
    g_object_unref(css_);
    // The widget may outlive this view (another reference to it); it no longer carries the name.
    gtk_widget_remove_css_class(widget_, cssClass_.c_str());
    releaseCssClass(std::move(cssClass_));
  }
  g_object_unref(widget_);
}

GtkViewState* GtkViewState::of(const platform::View& view) {
  return dynamic_cast<GtkViewState*>(const_cast<platform::View*>(&view));
}

GtkWidget* gtkWidgetOf(const platform::View& view) {
  const GtkViewState* state = GtkViewState::of(view);
  return state != nullptr ? state->widget() : nullptr;
}

void GtkViewState::setCss(const std::string& key, std::string declarations, std::string subnode) {
  auto found = std::find_if(cssBlocks_.begin(), cssBlocks_.end(), [&](const CssBlock& block) {
    return block.key == key && block.subnode == subnode;
  });
  if (found != cssBlocks_.end()) {
    found->declarations = std::move(declarations);
  } else {
    cssBlocks_.push_back({key, std::move(subnode), std::move(declarations)});
  }
  if (css_ == nullptr) {
    cssClass_ = acquireCssClass();
    gtk_widget_add_css_class(widget_, cssClass_.c_str());
    css_ = gtk_css_provider_new();
    // A provider on a widget's own style context does not reach its subnodes (a progress bar's
    // trough), so the view's rules go to the display, selecting this view's class alone.
    gtk_style_context_add_provider_for_display(gtk_widget_get_display(widget_),
                                               GTK_STYLE_PROVIDER(css_),
                                               GTK_STYLE_PROVIDER_PRIORITY_APPLICATION);
  }
  std::string text;
  for (const CssBlock& block : cssBlocks_) {
    text += "." + cssClass_ + (block.subnode.empty() ? "" : " " + block.subnode) + " {" +
            block.declarations + "}\n";
  }
  gtk_css_provider_load_from_data(css_, text.c_str(), static_cast<gssize>(text.size()));
}

// --- Tree ---

void GtkViewState::addSubview(std::shared_ptr<platform::View> child) {
  GtkViewState* state = child ? of(*child) : nullptr;
  if (state == nullptr || state == this) {
    return;
  }
  if (state->superviewState_ != nullptr) {
    state->superviewState_->detachChild(*state);
  } else if (gtk_widget_get_parent(state->widget_) != nullptr) {
    gtk_widget_unparent(state->widget_);
  }
  // The newest subview is in front: GTK draws children in list order.
  gtk_widget_insert_before(state->widget_, widget_, nullptr);
  state->superview_ = self_;
  state->superviewState_ = this;
  subviews_.push_back(std::move(child));
  state->updateFrameConstraints();
}

void GtkViewState::removeFromSuperview() {
  if (superviewState_ != nullptr) {
    superviewState_->detachChild(*this);
  }
}

// Unlinks `child` from this view; the caller's reference (if any) keeps it alive.
void GtkViewState::detachChild(GtkViewState& child) {
  std::shared_ptr<platform::View> keep;
  auto found = std::find_if(subviews_.begin(), subviews_.end(),
                            [&child](const auto& view) { return of(*view) == &child; });
  if (found != subviews_.end()) {
    keep = *found;
    subviews_.erase(found);
  }
  child.clearFrameConstraints();
  removeConstraintsNaming(child);
  child.superview_ = nullptr;
  child.superviewState_ = nullptr;
  gtk_widget_unparent(child.widget_);
}

void GtkViewState::bringSubviewToFront(platform::View& child) {
  auto found = std::find_if(subviews_.begin(), subviews_.end(),
                            [&child](const auto& view) { return view.get() == &child; });
  if (found == subviews_.end()) {
    return;
  }
  std::shared_ptr<platform::View> moved = *found;
  subviews_.erase(found);
  subviews_.push_back(moved);
  gtk_widget_insert_before(gtkWidgetOf(child), widget_, nullptr);
}

void GtkViewState::rememberConstraint(GtkConstraint* constraint, GtkViewState* other) {
  // `constraint` is already in this view's layout with a reference held for removal.
  auto record = std::make_unique<ConstraintRecord>();
  record->constraint = constraint;
  record->other = other;
  constraints_.push_back(std::move(record));
}

void GtkViewState::removeConstraintsNaming(const GtkViewState& view) {
  GtkConstraintLayout* layout = constraintLayoutOf(widget_);
  const auto* widget = GTK_CONSTRAINT_TARGET(view.widget_);
  std::erase_if(constraints_, [&](const std::unique_ptr<ConstraintRecord>& record) {
    const bool names = gtk_constraint_get_target(record->constraint) == widget ||
                       gtk_constraint_get_source(record->constraint) == widget ||
                       record->other == &view;
    if (names) {
      removeConstraint(layout, record->constraint);
    }
    return names;
  });
}

// --- Geometry ---

bool GtkViewState::fillsSuperview() const {
  constexpr unsigned fill =
      platform::AutoresizingMask::flexibleWidth | platform::AutoresizingMask::flexibleHeight;
  return (mask_ & fill) == fill;
}

void GtkViewState::clearFrameConstraints() {
  GtkConstraintLayout* layout =
      superviewState_ != nullptr ? constraintLayoutOf(superviewState_->widget_) : nullptr;
  for (GtkConstraint* constraint : frameConstraints_) {
    removeConstraint(layout, constraint);
  }
  frameConstraints_.clear();
}

void GtkViewState::updateFrameConstraints() {
  clearFrameConstraints();
  GtkConstraintLayout* layout =
      superviewState_ != nullptr ? constraintLayoutOf(superviewState_->widget_) : nullptr;
  if (!translates_ || layout == nullptr) {
    return;
  }
  auto* target = GTK_CONSTRAINT_TARGET(widget_);
  auto edge = [&](GtkConstraintAttribute attribute, double constant) {
    frameConstraints_.push_back(addConstraint(
        layout, gtk_constraint_new(target, attribute, GTK_CONSTRAINT_RELATION_EQ, nullptr,
                                   attribute, 1.0, constant, kFrameStrength)));
  };
  auto size = [&](GtkConstraintAttribute attribute, double constant) {
    frameConstraints_.push_back(addConstraint(
        layout, gtk_constraint_new_constant(target, attribute, GTK_CONSTRAINT_RELATION_EQ, constant,
                                            kFrameStrength)));
  };
  edge(GTK_CONSTRAINT_ATTRIBUTE_LEFT, frame_.origin.x);
  edge(GTK_CONSTRAINT_ATTRIBUTE_TOP, frame_.origin.y);
  // A flexible width and height is the web view of a full-screen screen: it keeps its origin and
  // follows the superview's size (the margins to the far edges stay at zero).
  if (fillsSuperview()) {
    edge(GTK_CONSTRAINT_ATTRIBUTE_RIGHT, 0.0);
    edge(GTK_CONSTRAINT_ATTRIBUTE_BOTTOM, 0.0);
  } else {
    size(GTK_CONSTRAINT_ATTRIBUTE_WIDTH, frame_.size.width);
    size(GTK_CONSTRAINT_ATTRIBUTE_HEIGHT, frame_.size.height);
  }
}

platform::Rect GtkViewState::frame() const {
  // A view held at its frame reports that frame at once (GTK allocates it on the next layout);
  // any other view reports what GTK allocated.
  const bool heldAtFrame = translates_ && !fillsSuperview() &&
                           (superview_ != nullptr || gtk_widget_get_parent(widget_) == nullptr);
  if (heldAtFrame) {
    return frame_;
  }
  GtkWidget* parent = gtk_widget_get_parent(widget_);
  graphene_rect_t bounds;
  if (parent != nullptr && gtk_widget_compute_bounds(widget_, parent, &bounds)) {
    return {{bounds.origin.x, bounds.origin.y}, {bounds.size.width, bounds.size.height}};
  }
  return {{},
          {static_cast<double>(gtk_widget_get_width(widget_)),
           static_cast<double>(gtk_widget_get_height(widget_))}};
}

platform::Rect GtkViewState::bounds() const {
  return {{}, frame().size};
}

void GtkViewState::setFrame(platform::Rect frame) {
  frame_ = frame;
  updateFrameConstraints();
}

void GtkViewState::setAutoresizingMask(unsigned mask) {
  mask_ = mask;
  updateFrameConstraints();
}

void GtkViewState::setTranslatesAutoresizingMaskIntoConstraints(bool translates) {
  translates_ = translates;
  updateFrameConstraints();
}

// --- Appearance ---

void GtkViewState::setAlpha(double alpha) {
  const double from = alpha_;
  alpha_ = alpha;
  applyOpacity(widget_, from, alpha);
}

void GtkViewState::setHidden(bool hidden) {
  hidden_ = hidden;
  gtk_widget_set_visible(widget_, hidden ? FALSE : TRUE);
}

void GtkViewState::setBackgroundColor(platform::Color color) {
  setCss("background", "background-color: " + cssColor(color) + "; background-image: none;");
}

void GtkViewState::setCornerRadius(double radius) {
  setCss("radius", "border-radius: " + cssNumber(radius) + "px;");
  gtk_widget_set_overflow(widget_, radius > 0.0 ? GTK_OVERFLOW_HIDDEN : GTK_OVERFLOW_VISIBLE);
}

// --- Layers ---

void GtkViewState::addSublayer(std::shared_ptr<platform::Layer> layer) {
  if (!layer) {
    return;
  }
  auto* gtkLayer = dynamic_cast<GtkLayerWidget*>(layer.get());
  if (gtkLayer != nullptr && gtkLayer->holder != nullptr) {
    gtkLayer->holder->removeSublayer(*layer);
  }
  sublayers_.push_back(layer);
  if (gtkLayer == nullptr) {
    return;
  }
  gtkLayer->holder = this;
  GtkWidget* drawing = gtkLayer->layerWidget();
  gtk_widget_insert_before(drawing, widget_, nullptr);
  if (GtkConstraintLayout* layout = constraintLayoutOf(widget_)) {
    const platform::Rect frame = gtkLayer->layerFrame();
    auto* target = GTK_CONSTRAINT_TARGET(drawing);
    const std::pair<GtkConstraintAttribute, double> edges[] = {
        {GTK_CONSTRAINT_ATTRIBUTE_LEFT, frame.origin.x},
        {GTK_CONSTRAINT_ATTRIBUTE_TOP, frame.origin.y}};
    for (const auto& [attribute, constant] : edges) {
      rememberConstraint(
          addConstraint(layout, gtk_constraint_new(target, attribute, GTK_CONSTRAINT_RELATION_EQ,
                                                   nullptr, attribute, 1.0, constant,
                                                   GTK_CONSTRAINT_STRENGTH_REQUIRED)),
          nullptr);
    }
    const std::pair<GtkConstraintAttribute, double> sizes[] = {
        {GTK_CONSTRAINT_ATTRIBUTE_WIDTH, frame.size.width},
        {GTK_CONSTRAINT_ATTRIBUTE_HEIGHT, frame.size.height}};
    for (const auto& [attribute, constant] : sizes) {
      rememberConstraint(addConstraint(layout, gtk_constraint_new_constant(
                                                   target, attribute, GTK_CONSTRAINT_RELATION_EQ,
                                                   constant, GTK_CONSTRAINT_STRENGTH_REQUIRED)),
                         nullptr);
    }
  }
}

void GtkViewState::removeSublayer(platform::Layer& layer) {
  auto found = std::find_if(sublayers_.begin(), sublayers_.end(),
                            [&layer](const auto& held) { return held.get() == &layer; });
  if (found == sublayers_.end()) {
    return;
  }
  const std::shared_ptr<platform::Layer> keep = *found;
  sublayers_.erase(found);
  if (auto* gtkLayer = dynamic_cast<GtkLayerWidget*>(&layer)) {
    GtkWidget* drawing = gtkLayer->layerWidget();
    GtkConstraintLayout* layout = constraintLayoutOf(widget_);
    std::erase_if(constraints_, [&](const std::unique_ptr<ConstraintRecord>& record) {
      if (gtk_constraint_get_target(record->constraint) != GTK_CONSTRAINT_TARGET(drawing)) {
        return false;
      }
      removeConstraint(layout, record->constraint);
      return true;
    });
    gtkLayer->holder = nullptr;
    gtk_widget_unparent(drawing);
  }
}

}  // namespace vemba::linux_platform
