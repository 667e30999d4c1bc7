// Recording views and layers of the fake user interface. They keep the tree, the geometry and
// every property the core sets, and behave as the seam's contract says (a superview holds its
// subviews, adding a view that has a superview moves it, the newest subview is in front).
// Single-threaded, like the fake main queue.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/View.h"

namespace vemba::fake {

class FakeLayerLink;

// The state every fake view shares, whatever seam class it implements. Reach it from a
// platform::View with FakeViewState::of().
class FakeViewState {
 public:
  virtual ~FakeViewState();

  // The fake state of `view`; throws std::logic_error for a view the fake did not make.
  static FakeViewState& of(const platform::View& view);

  platform::View* self = nullptr;  // the view this state belongs to
  platform::View* superviewPtr = nullptr;
  std::vector<std::shared_ptr<platform::View>> subviewList;  // back to front
  std::vector<std::shared_ptr<platform::Layer>> layerList;
  platform::Rect frameValue;
  double alphaValue = 1.0;
  bool hidden = false;
  std::optional<platform::Color> backgroundColor;
  bool opaque = true;
  double cornerRadius = 0.0;
  unsigned autoresizingMask = 0;
  bool translatesAutoresizingMaskIntoConstraints = true;

  // The topmost ancestor (the view itself when it has no superview).
  const platform::View* root() const;

 protected:
  void addSubviewImpl(std::shared_ptr<platform::View> child);
  void removeFromSuperviewImpl();
  void bringSubviewToFrontImpl(platform::View& child);
  void addSublayerImpl(std::shared_ptr<platform::Layer> layer);
};

// Implements every platform::View operation of `Base` on FakeViewState.
template <typename Base>
class FakeViewImpl : public Base, public FakeViewState {
 public:
  FakeViewImpl() { self = this; }

  void addSubview(std::shared_ptr<platform::View> child) override {
    addSubviewImpl(std::move(child));
  }
  void removeFromSuperview() override { removeFromSuperviewImpl(); }
  void bringSubviewToFront(platform::View& child) override { bringSubviewToFrontImpl(child); }
  platform::View* superview() const override { return superviewPtr; }
  std::vector<std::shared_ptr<platform::View>> subviews() const override { return subviewList; }

  platform::Rect frame() const override { return frameValue; }
  platform::Rect bounds() const override { return platform::Rect{{}, frameValue.size}; }
  void setFrame(platform::Rect frame) override { frameValue = frame; }
  void setAutoresizingMask(unsigned mask) override { autoresizingMask = mask; }
  void setTranslatesAutoresizingMaskIntoConstraints(bool translates) override {
    translatesAutoresizingMaskIntoConstraints = translates;
  }

  void setAlpha(double alpha) override { alphaValue = alpha; }
  double alpha() const override { return alphaValue; }
  void setHidden(bool value) override { hidden = value; }
  bool isHidden() const override { return hidden; }
  void setBackgroundColor(platform::Color color) override { backgroundColor = color; }
  void setOpaque(bool value) override { opaque = value; }
  void setCornerRadius(double radius) override { cornerRadius = radius; }

  std::vector<std::shared_ptr<platform::Layer>> sublayers() const override { return layerList; }
  void addSublayer(std::shared_ptr<platform::Layer> layer) override {
    addSublayerImpl(std::move(layer));
  }
};

using FakeView = FakeViewImpl<platform::View>;

class FakeButton final : public FakeViewImpl<platform::Button> {
 public:
  void setTitle(std::string text) override { title = std::move(text); }
  void setTitleColor(platform::Color color) override { titleColor = color; }
  void setSystemFont(double size, FontWeight weight) override {
    fontSize = size;
    fontWeight = weight;
  }
  void setAction(std::function<void()> action) override { action_ = std::move(action); }

  // The user's click: runs the action, if one is set.
  void tap();

  std::string title;
  std::optional<platform::Color> titleColor;
  double fontSize = 0.0;
  FontWeight fontWeight = FontWeight::regular;

 private:
  std::function<void()> action_;
};

class FakeProgressBar final : public FakeViewImpl<platform::ProgressBar> {
 public:
  struct ProgressCall {
    float progress = 0.0F;
    bool animated = false;
    friend bool operator==(const ProgressCall&, const ProgressCall&) = default;
  };

  void setProgress(float progress, bool animated) override;
  float progress() const override { return progress_; }
  void setTintColor(platform::Color color) override { tintColor = color; }

  std::optional<platform::Color> tintColor;
  std::vector<ProgressCall> progressCalls;  // every setProgress, in order

 private:
  float progress_ = 0.0F;
};

// Links a fake layer to the view that holds it.
class FakeLayerLink {
 public:
  virtual ~FakeLayerLink() = default;
  FakeViewState* holder = nullptr;
};

class FakeEmitterLayer final : public platform::EmitterLayer, public FakeLayerLink {
 public:
  std::string name() const override { return name_; }
  void removeFromSuperlayer() override;

  void setName(std::string name) override { name_ = std::move(name); }
  void setFrame(platform::Rect value) override { frame = value; }
  void setEmitterPosition(platform::Point position) override { emitterPosition = position; }
  void setEmitterSize(platform::Size size) override { emitterSize = size; }
  void setEmitterShape(Shape shape) override { emitterShape = shape; }
  void setEmitterCells(std::vector<platform::EmitterCell> cells) override {
    emitterCells = std::move(cells);
  }
  void setBeginTime(double value) override { beginTime = value; }
  void setBirthRate(float birthRate) override { birthRate_ = birthRate; }
  float birthRate() const override { return birthRate_; }

  platform::Rect frame;
  platform::Point emitterPosition;
  platform::Size emitterSize;
  Shape emitterShape = Shape::point;
  std::vector<platform::EmitterCell> emitterCells;
  double beginTime = 0.0;

 private:
  std::string name_;
  float birthRate_ = 1.0F;
};

}  // namespace vemba::fake
