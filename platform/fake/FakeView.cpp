#include "FakeView.h"

#include <algorithm>
#include <stdexcept>

namespace vemba::fake {

FakeViewState::~FakeViewState() {
  // Subviews and layers that outlive this view no longer have a superview.
  for (const auto& child : subviewList) {
    of(*child).superviewPtr = nullptr;
  }
  for (const auto& layer : layerList) {
    if (auto* link = dynamic_cast<FakeLayerLink*>(layer.get())) {
      link->holder = nullptr;
    }
  }
}

FakeViewState& FakeViewState::of(const platform::View& view) {
  auto* state = dynamic_cast<FakeViewState*>(const_cast<platform::View*>(&view));
  if (state == nullptr) {
    throw std::logic_error("a view that the fake user interface did not make");
  }
  return *state;
}

const platform::View* FakeViewState::root() const {
  const platform::View* top = self;
  while (top->superview() != nullptr) {
    top = top->superview();
  }
  return top;
}

void FakeViewState::addSubviewImpl(std::shared_ptr<platform::View> child) {
  if (!child || child.get() == self) {
    throw std::logic_error("addSubview of no view or of the view itself");
  }
  FakeViewState& childState = of(*child);
  // Keep the child alive while it moves from its old superview to this one.
  const std::shared_ptr<platform::View> keep = child;
  childState.removeFromSuperviewImpl();
  childState.superviewPtr = self;
  subviewList.push_back(std::move(child));
}

void FakeViewState::removeFromSuperviewImpl() {
  if (superviewPtr == nullptr) {
    return;
  }
  FakeViewState& parent = of(*superviewPtr);
  superviewPtr = nullptr;
  auto& siblings = parent.subviewList;
  const auto it = std::find_if(siblings.begin(), siblings.end(),
                               [this](const auto& view) { return view.get() == self; });
  if (it != siblings.end()) {
    siblings.erase(it);  // may release this view: touch nothing after it
  }
}

void FakeViewState::bringSubviewToFrontImpl(platform::View& child) {
  const auto it = std::find_if(subviewList.begin(), subviewList.end(),
                               [&child](const auto& view) { return view.get() == &child; });
  if (it == subviewList.end()) {
    return;
  }
  std::shared_ptr<platform::View> moved = *it;
  subviewList.erase(it);
  subviewList.push_back(std::move(moved));
}

void FakeViewState::addSublayerImpl(std::shared_ptr<platform::Layer> layer) {
  auto* link = dynamic_cast<FakeLayerLink*>(layer.get());
  if (link == nullptr) {
    throw std::logic_error("a layer that the fake user interface did not make");
  }
  const std::shared_ptr<platform::Layer> keep = layer;
  layer->removeFromSuperlayer();
  link->holder = this;
  layerList.push_back(std::move(layer));
}

void FakeButton::tap() {
  if (action_) {
    const std::function<void()> action = action_;
    action();
  }
}

void FakeProgressBar::setProgress(float progress, bool animated) {
  progress_ = std::clamp(progress, 0.0F, 1.0F);
  progressCalls.push_back({progress, animated});
}

void FakeEmitterLayer::removeFromSuperlayer() {
  FakeViewState* from = holder;
  if (from == nullptr) {
    return;
  }
  holder = nullptr;
  auto& layers = from->layerList;
  const auto it = std::find_if(layers.begin(), layers.end(),
                               [this](const auto& layer) { return layer.get() == this; });
  if (it != layers.end()) {
    layers.erase(it);  // may release this layer: touch nothing after it
  }
}

}  // namespace vemba::fake
