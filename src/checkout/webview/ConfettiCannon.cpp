#include "checkout/webview/ConfettiCannon.h"

#include <memory>
#include <numbers>
#include <vector>

#include "platform/MainQueue.h"
#include "platform/Services.h"
#include "platform/Ui.h"
#include "platform/View.h"
#include "vemba/checkout/Configuration.h"

namespace vemba::checkout {
namespace {

// How far above the view's top edge the particles are born (also the emitter's height).
constexpr double kBirthOffset = 100.0;

// The parameters of every particle cell.
constexpr double kCellBeginTime = 0.1;
constexpr float kCellBirthRate = 20.0F;
constexpr double kCellEmissionRange = std::numbers::pi;
constexpr float kCellLifetime = 10.0F;
constexpr double kCellSpin = 4.0;
constexpr double kCellSpinRange = 8.0;
constexpr double kCellVelocityRange = 100.0;
constexpr double kCellYAcceleration = 150.0;

void removeEarlierConfetti(platform::View& view) {
  for (const std::shared_ptr<platform::Layer>& layer : view.sublayers()) {
    if (layer->name() == ConfettiCannon::kLayerName) {
      layer->removeFromSuperlayer();
      return;
    }
  }
}

platform::EmitterCell cellFor(const platform::Image& particle) {
  platform::EmitterCell cell;
  cell.beginTime = kCellBeginTime;
  cell.birthRate = kCellBirthRate;
  cell.contents = particle;
  cell.emissionRange = kCellEmissionRange;
  cell.lifetime = kCellLifetime;
  cell.spin = kCellSpin;
  cell.spinRange = kCellSpinRange;
  cell.velocityRange = kCellVelocityRange;
  cell.yAcceleration = kCellYAcceleration;
  return cell;
}

}  // namespace

void ConfettiCannon::fire(platform::View& view) {
  removeEarlierConfetti(view);

  const Configuration::Confetti confetti = configuration().confetti;
  platform::Ui* ui = platform::ui();
  if (!confetti.enabled || confetti.particles.empty() || ui == nullptr) {
    return;
  }

  const platform::Rect frame = view.frame();
  std::shared_ptr<platform::EmitterLayer> layer = ui->createEmitterLayer();
  layer->setName(std::string(kLayerName));
  layer->setFrame(frame);
  layer->setEmitterPosition({frame.midX(), frame.minY() - kBirthOffset});
  layer->setEmitterSize({frame.width(), kBirthOffset});
  layer->setEmitterShape(platform::EmitterLayer::Shape::rectangle);

  std::vector<platform::EmitterCell> cells;
  cells.reserve(confetti.particles.size());
  for (const platform::Image& particle : confetti.particles) {
    cells.push_back(cellFor(particle));
  }
  layer->setEmitterCells(std::move(cells));
  layer->setBeginTime(ui->currentMediaTime());
  view.addSublayer(layer);

  // Particles already born keep falling for their lifetime; the layer stays until the next fire.
  platform::services().mainQueue->postAfter(
      kEmissionDuration, [weakLayer = std::weak_ptr<platform::EmitterLayer>(layer)] {
        if (const auto emitter = weakLayer.lock()) {
          emitter->setBirthRate(0.0F);
        }
      });
}

}  // namespace vemba::checkout
