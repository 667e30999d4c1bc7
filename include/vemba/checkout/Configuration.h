// The process-wide record that styles and tunes every checkout sheet, and its read accessor.
//
// Contract: `Configuration` is a value record (copies share only the `logger` object and the
// particle images). The global record is created with the defaults on first use, once and
// thread-safely; configuration() returns a copy. It is written only through the checkout entry
// points, which run the configuration change hook after every write.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "vemba/Export.h"
#include "vemba/checkout/LogLevel.h"
#include "vemba/checkout/Logger.h"
#include "vemba/checkout/MetaData.h"
#include "vemba/checkout/UserAgent.h"
#include "vemba/platform/Color.h"
#include "vemba/platform/Image.h"

namespace vemba::checkout {

using Color = ::vemba::platform::Color;

// The default tint and spinner colour.
inline constexpr Color kDefaultTintColor = Color::rgba(0.09, 0.45, 0.69, 1.0);

struct VEMBA_EXPORT Configuration {
  // The celebration shown when a checkout completes.
  struct Confetti {
    bool enabled = false;
    std::vector<::vemba::platform::Image> particles;
  };

  // Whether preloading a checkout does anything. Every write of `enabled` (even of the value it
  // already has, and on any copy) also clears the checkout web view's "preloading activated by
  // client" flag; that is deliberate.
  class Preloading {
   public:
    Preloading() = default;
    explicit Preloading(bool enabled) : enabled_(enabled) {}
    bool enabled() const { return enabled_; }
    void setEnabled(bool enabled);

   private:
    bool enabled_ = true;
  };

  // Defaults as listed per field; the title is the host bundle's localised "checkout_sheet_title"
  // (default "Checkout"), looked up when the record is made.
  Configuration();

  UserAgent::ColorScheme colorScheme = UserAgent::ColorScheme::automatic;
  Confetti confetti;
  Preloading preloading;
  Color tintColor = kDefaultTintColor;
  Color spinnerColor = kDefaultTintColor;
  Color backgroundColor = Color::systemBackground();
  std::shared_ptr<Logger> logger = std::make_shared<NoOpLogger>();
  std::string title;
  std::optional<Color> closeButtonTintColor;
  std::optional<Platform> platform;
  LogLevel logLevel = LogLevel::error;
};

// A copy of the global record (created with the defaults on first use).
VEMBA_EXPORT Configuration configuration();

}  // namespace vemba::checkout
