// Chainable styling for the type that derives from it (CRTP): each operation writes one field of
// the global configuration (running the change hook, see Checkout.h) and returns a copy of the
// receiver, so calls can be chained: sheet.title("Pay").tintColor(color).
//
// Contract: main thread only.
#pragma once

#include <optional>
#include <string>
#include <utility>

#include "vemba/checkout/Checkout.h"
#include "vemba/checkout/Configuration.h"
#include "vemba/checkout/UserAgent.h"

namespace vemba::checkout {

template <typename Derived>
class CheckoutConfigurable {
 public:
  Derived backgroundColor(Color color) const {
    configure([color](Configuration& c) { c.backgroundColor = color; });
    return self();
  }
  Derived colorScheme(UserAgent::ColorScheme scheme) const {
    configure([scheme](Configuration& c) { c.colorScheme = scheme; });
    return self();
  }
  Derived tintColor(Color color) const {
    configure([color](Configuration& c) { c.tintColor = color; });
    return self();
  }
  Derived title(std::string text) const {
    configure([&text](Configuration& c) { c.title = std::move(text); });
    return self();
  }
  Derived closeButtonTintColor(std::optional<Color> color) const {
    configure([color](Configuration& c) { c.closeButtonTintColor = color; });
    return self();
  }

 protected:
  CheckoutConfigurable() = default;

 private:
  Derived self() const { return static_cast<const Derived&>(*this); }
};

}  // namespace vemba::checkout
