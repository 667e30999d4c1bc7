// The one-second burst of confetti thrown over the checkout screen when a checkout completes,
// when the configuration enables it and gives particle images.
//
// Contract: main thread only. The emitter layer belongs to the view it is added to; the delayed
// stop holds it weakly and does nothing once it is gone.
#pragma once

#include <chrono>
#include <string_view>

namespace vemba::platform {
class View;
}

namespace vemba::checkout {

class ConfettiCannon {
 public:
  ConfettiCannon() = delete;

  // The name of the emitter layer the cannon adds (and removes at the next fire).
  static constexpr std::string_view kLayerName = "checkout-confetti";
  // How long new particles are born.
  static constexpr std::chrono::milliseconds kEmissionDuration{1000};

  // Removes the view's earlier confetti layer (always, even when confetti is disabled), then,
  // when enabled with particles, adds an emitter layer with one cell per particle image, in the
  // configured order, born 100 points above the view's top edge across its width.
  static void fire(platform::View& view);
};

}  // namespace vemba::checkout
