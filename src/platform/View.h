// Views, layers and layout constraints: the drawing primitives the core's screens are built of.
//
// The core states every layout as anchor equations with constants and every property value; a
// backend realises them and decides nothing. All of it is main-thread only.
//
// Ownership: a superview holds its subviews strongly and a layer its sublayers; removing one
// releases it. A view holds no reference to its superview beyond the raw back pointer.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/Geometry.h"
#include "vemba/platform/Color.h"
#include "vemba/platform/Image.h"

namespace vemba::platform {

class View;

// One edge or dimension of a view (or of its safe area) in a layout equation.
struct LayoutAnchor {
  enum class Attribute { top, bottom, leading, trailing, width, height };
  View* view = nullptr;  // not owned; must be alive when the constraint is activated
  Attribute attribute = Attribute::top;
  bool safeArea = false;  // the view's safe-area guide instead of its own edges

  friend bool operator==(const LayoutAnchor&, const LayoutAnchor&) = default;
};

// first = second + constant, or first = constant when `second` is absent (width and height).
struct LayoutConstraint {
  LayoutAnchor first;
  std::optional<LayoutAnchor> second;
  double constant = 0.0;

  friend bool operator==(const LayoutConstraint&, const LayoutConstraint&) = default;
};

// A layer in a view's layer tree. Only the confetti emitter is ever added by the core.
class Layer {
 public:
  virtual ~Layer() = default;
  virtual std::string name() const = 0;
  // Detaches the layer from the layer that holds it; nothing when it is not attached.
  virtual void removeFromSuperlayer() = 0;
};

// One kind of particle of an emitter, with the platform's meaning of each property (rates per
// second, angles in radians, velocities and accelerations in points per second).
struct EmitterCell {
  double beginTime = 0.0;
  float birthRate = 0.0F;
  Image contents;
  double emissionRange = 0.0;
  float lifetime = 0.0F;
  double spin = 0.0;
  double spinRange = 0.0;
  double velocityRange = 0.0;
  double yAcceleration = 0.0;

  friend bool operator==(const EmitterCell&, const EmitterCell&) = default;
};

// A particle emitter layer. The backend animates the particles by the platform's particle model
// from these values; the core only sets them.
class EmitterLayer : public Layer {
 public:
  enum class Shape { point, rectangle };

  virtual void setName(std::string name) = 0;
  virtual void setFrame(Rect frame) = 0;
  virtual void setEmitterPosition(Point position) = 0;
  virtual void setEmitterSize(Size size) = 0;
  virtual void setEmitterShape(Shape shape) = 0;
  virtual void setEmitterCells(std::vector<EmitterCell> cells) = 0;
  // In seconds of the platform's media clock (Ui::currentMediaTime()).
  virtual void setBeginTime(double beginTime) = 0;
  // A multiplier of every cell's birth rate (1 by default); 0 stops new particles.
  virtual void setBirthRate(float birthRate) = 0;
  virtual float birthRate() const = 0;
};

// Bits of View::setAutoresizingMask, with the platform's values.
namespace AutoresizingMask {
inline constexpr unsigned flexibleLeftMargin = 1U << 0U;
inline constexpr unsigned flexibleWidth = 1U << 1U;
inline constexpr unsigned flexibleRightMargin = 1U << 2U;
inline constexpr unsigned flexibleTopMargin = 1U << 3U;
inline constexpr unsigned flexibleHeight = 1U << 4U;
inline constexpr unsigned flexibleBottomMargin = 1U << 5U;
}  // namespace AutoresizingMask

class View {
 public:
  virtual ~View() = default;

  // Tree. addSubview() of a view that has a superview moves it; the newest subview is in front.
  virtual void addSubview(std::shared_ptr<View> child) = 0;
  virtual void removeFromSuperview() = 0;
  virtual void bringSubviewToFront(View& child) = 0;
  virtual View* superview() const = 0;
  virtual std::vector<std::shared_ptr<View>> subviews() const = 0;

  // Geometry. frame() is in the superview's coordinates, bounds() in the view's own.
  virtual Rect frame() const = 0;
  virtual Rect bounds() const = 0;
  virtual void setFrame(Rect frame) = 0;
  virtual void setAutoresizingMask(unsigned mask) = 0;
  virtual void setTranslatesAutoresizingMaskIntoConstraints(bool translates) = 0;

  // Appearance. Inside Ui::animate()'s animations block, setAlpha() animates.
  virtual void setAlpha(double alpha) = 0;
  virtual double alpha() const = 0;
  virtual void setHidden(bool hidden) = 0;
  virtual bool isHidden() const = 0;
  virtual void setBackgroundColor(Color color) = 0;
  virtual void setOpaque(bool opaque) = 0;
  virtual void setCornerRadius(double radius) = 0;

  // The view's layer tree: its sublayers in order, and adding one on top.
  virtual std::vector<std::shared_ptr<Layer>> sublayers() const = 0;
  virtual void addSublayer(std::shared_ptr<Layer> layer) = 0;

  LayoutAnchor anchor(LayoutAnchor::Attribute attribute) { return {this, attribute, false}; }
  LayoutAnchor safeAreaAnchor(LayoutAnchor::Attribute attribute) { return {this, attribute, true}; }
};

// A push button of the platform's system type.
class Button : public View {
 public:
  enum class FontWeight { regular, bold };

  virtual void setTitle(std::string title) = 0;  // for the normal state
  virtual void setTitleColor(Color color) = 0;   // for the normal state
  // The platform's system font of `size` points in `weight`.
  virtual void setSystemFont(double size, FontWeight weight) = 0;
  // Runs on every touch-up-inside (a click); replaces any earlier action.
  virtual void setAction(std::function<void()> action) = 0;
};

// A determinate progress line of the platform's bar style; starts at progress 0.
class ProgressBar : public View {
 public:
  virtual void setProgress(float progress, bool animated) = 0;
  virtual float progress() const = 0;
  virtual void setTintColor(Color color) = 0;
};

}  // namespace vemba::platform
