// Every platform::View operation over one GTK widget, for any seam class derived from View.
//
// A GTK backend class derives from GtkViewBase<Interface> (Interface is platform::View or a seam
// class derived from it) and hands its widget to the constructor; GtkViewBase takes a strong
// reference (sinking a floating one) and releases it in its destructor, after detaching the widget
// from its GTK parent. Main thread only; GTK must be initialised.
//
// The view tree is mirrored onto the widget tree: a subview's widget is a GTK child of its
// superview's widget, in the same back-to-front order. Positions are realised by the superview's
// GtkConstraintLayout (views made by Ui::createView() have one): a view that translates its
// autoresizing mask is held at its frame, or fills its superview when flexible in width and height;
// anchor constraints from Ui::activate() are added to the layout of the views' common parent.
// Views whose widget has another layout manager (buttons, progress bars, web views) place their
// GTK children themselves and are not meant to hold subviews.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/View.h"

using GtkWidget = struct _GtkWidget;
using GtkCssProvider = struct _GtkCssProvider;
using GtkConstraint = struct _GtkConstraint;

namespace vemba::linux_platform {

class GtkViewState;

// A layer that the GTK backend draws with a widget of its own (the emitter's drawing area). A view
// that receives it through addSublayer() parents that widget over its frame.
class GtkLayerWidget {
 public:
  virtual ~GtkLayerWidget() = default;
  virtual GtkWidget* layerWidget() const = 0;
  // The layer's frame in the coordinates of the view that holds it.
  virtual platform::Rect layerFrame() const = 0;
  // The view that holds the layer now, or null; set by that view only.
  GtkViewState* holder = nullptr;
};

// The state and behaviour shared by every GTK view, whatever seam class it implements. Reach it
// from a platform::View with GtkViewState::of().
class GtkViewState {
 public:
  GtkViewState(GtkWidget* widget, platform::View& self);
  virtual ~GtkViewState();
  GtkViewState(const GtkViewState&) = delete;
  GtkViewState& operator=(const GtkViewState&) = delete;

  // The GTK state of `view`; null for a view that no GTK backend class made.
  static GtkViewState* of(const platform::View& view);

  GtkWidget* widget() const { return widget_; }
  platform::View& view() const { return *self_; }

  // A CSS declaration block ("background-color: …; border-radius: …;") kept under `key` and
  // applied to this widget alone; an empty block removes the key. Subclasses style themselves
  // through it so every property of one view lives in one provider.
  void setCss(const std::string& key, std::string declarations);

  // Called by Ui::activate(): remembers a constraint that names this view and lives in this
  // view's constraint layout, so it is removed with either view.
  void rememberConstraint(GtkConstraint* constraint, GtkViewState* other);
  // Re-applies the frame constraints (after a change of frame, mask or superview).
  void updateFrameConstraints();
  // Whether this view is placed by an activated constraint, the translated mask or neither.
  bool translatesAutoresizingMask() const { return translates_; }

  // Every View operation, for GtkViewBase to forward to.
  void addSubview(std::shared_ptr<platform::View> child);
  void removeFromSuperview();
  void bringSubviewToFront(platform::View& child);
  platform::View* superview() const { return superview_; }
  std::vector<std::shared_ptr<platform::View>> subviews() const { return subviews_; }
  platform::Rect frame() const;
  platform::Rect bounds() const;
  void setFrame(platform::Rect frame);
  void setAutoresizingMask(unsigned mask);
  void setTranslatesAutoresizingMaskIntoConstraints(bool translates);
  void setAlpha(double alpha);
  double alpha() const { return alpha_; }
  void setHidden(bool hidden);
  bool isHidden() const { return hidden_; }
  void setBackgroundColor(platform::Color color);
  void setOpaque(bool opaque) { opaque_ = opaque; }
  void setCornerRadius(double radius);
  std::vector<std::shared_ptr<platform::Layer>> sublayers() const { return sublayers_; }
  void addSublayer(std::shared_ptr<platform::Layer> layer);
  // Drops `layer` from this view's sublayers and unparents its widget
  // (Layer::removeFromSuperlayer).
  void removeSublayer(platform::Layer& layer);

 private:
  struct ConstraintRecord;

  void detachChild(GtkViewState& child);
  void removeConstraintsNaming(const GtkViewState& view);
  void clearFrameConstraints();
  bool fillsSuperview() const;

  GtkWidget* widget_;
  platform::View* self_;
  GtkViewState* superviewState_ = nullptr;
  platform::View* superview_ = nullptr;
  std::vector<std::shared_ptr<platform::View>> subviews_;
  std::vector<std::shared_ptr<platform::Layer>> sublayers_;
  // Constraints in this view's own layout, with the views they name.
  std::vector<std::unique_ptr<ConstraintRecord>> constraints_;
  // The frame constraints this view has in its superview's layout.
  std::vector<GtkConstraint*> frameConstraints_;
  GtkCssProvider* css_ = nullptr;
  std::vector<std::pair<std::string, std::string>> cssBlocks_;
  platform::Rect frame_;
  unsigned mask_ = 0;
  bool translates_ = true;
  double alpha_ = 1.0;
  bool hidden_ = false;
  bool opaque_ = true;
};

// Implements every platform::View method of `Interface` over the widget handed to the
// constructor.
template <class Interface>
class GtkViewBase : public Interface, public GtkViewState {
 public:
  // Takes a reference on `widget` (sinking a floating one); released by the destructor.
  explicit GtkViewBase(GtkWidget* widget) : GtkViewState(widget, *this) {}

  using GtkViewState::widget;

  void addSubview(std::shared_ptr<platform::View> child) override {
    GtkViewState::addSubview(std::move(child));
  }
  void removeFromSuperview() override { GtkViewState::removeFromSuperview(); }
  void bringSubviewToFront(platform::View& child) override {
    GtkViewState::bringSubviewToFront(child);
  }
  platform::View* superview() const override { return GtkViewState::superview(); }
  std::vector<std::shared_ptr<platform::View>> subviews() const override {
    return GtkViewState::subviews();
  }

  platform::Rect frame() const override { return GtkViewState::frame(); }
  platform::Rect bounds() const override { return GtkViewState::bounds(); }
  void setFrame(platform::Rect frame) override { GtkViewState::setFrame(frame); }
  void setAutoresizingMask(unsigned mask) override { GtkViewState::setAutoresizingMask(mask); }
  void setTranslatesAutoresizingMaskIntoConstraints(bool translates) override {
    GtkViewState::setTranslatesAutoresizingMaskIntoConstraints(translates);
  }

  void setAlpha(double alpha) override { GtkViewState::setAlpha(alpha); }
  double alpha() const override { return GtkViewState::alpha(); }
  void setHidden(bool hidden) override { GtkViewState::setHidden(hidden); }
  bool isHidden() const override { return GtkViewState::isHidden(); }
  void setBackgroundColor(platform::Color color) override {
    GtkViewState::setBackgroundColor(color);
  }
  void setOpaque(bool opaque) override { GtkViewState::setOpaque(opaque); }
  void setCornerRadius(double radius) override { GtkViewState::setCornerRadius(radius); }

  std::vector<std::shared_ptr<platform::Layer>> sublayers() const override {
    return GtkViewState::sublayers();
  }
  void addSublayer(std::shared_ptr<platform::Layer> layer) override {
    GtkViewState::addSublayer(std::move(layer));
  }
};

// The widget of any view a GTK backend class made; null for any other view.
GtkWidget* gtkWidgetOf(const platform::View& view);

// A new container widget for a plain view: draws its CSS background and places its children with
// a GtkConstraintLayout. Floating, like any new widget.
GtkWidget* newContainerWidget();

}  // namespace vemba::linux_platform
