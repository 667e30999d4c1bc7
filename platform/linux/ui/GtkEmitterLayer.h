// The particle emitter layer: a GtkDrawingArea over the view that holds it (it takes no input),
// animated by a tick callback while it has particles or may still make some (the callback
// removes itself once the layer is spent, and a change of the cells or the rate starts it again).
// Particles follow the platform's particle model for the properties the seam carries; see
// ParticleSystem.h. Owned by the core; main thread only.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "GtkViewBase.h"
#include "ParticleSystem.h"

namespace vemba::linux_platform {

class GtkEmitterLayer final : public platform::EmitterLayer, public GtkLayerWidget {
 public:
  GtkEmitterLayer();
  ~GtkEmitterLayer() override;
  GtkEmitterLayer(const GtkEmitterLayer&) = delete;
  GtkEmitterLayer& operator=(const GtkEmitterLayer&) = delete;

  std::string name() const override { return name_; }
  void removeFromSuperlayer() override;
  void setName(std::string name) override { name_ = std::move(name); }
  void setFrame(platform::Rect frame) override { frame_ = frame; }
  void setEmitterPosition(platform::Point position) override;
  void setEmitterSize(platform::Size size) override;
  void setEmitterShape(Shape shape) override;
  void setEmitterCells(std::vector<platform::EmitterCell> cells) override;
  void setBeginTime(double beginTime) override;
  void setBirthRate(float birthRate) override;
  float birthRate() const override;

  GtkWidget* layerWidget() const override { return area_; }
  platform::Rect layerFrame() const override { return frame_; }

  // Tests and tools: the particles alive now, and whether the frame clock still steps them.
  std::size_t particleCount() const;
  bool isTicking() const { return tickId_ != 0; }

 private:
  void tick();

  GtkWidget* area_;
  std::shared_ptr<ParticleSystem> system_;
  unsigned tickId_ = 0;
  std::string name_;
  platform::Rect frame_;
};

}  // namespace vemba::linux_platform
