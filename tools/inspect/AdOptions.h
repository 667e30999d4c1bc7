// What the ad commands share: the ad's options on the command line and the printed form of a
// load error.
#pragma once

#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include "Options.h"
#include "vemba/Error.h"

namespace vemba::inspect {

enum class Format { interstitial, rewarded };

struct AdOptions {
  std::string adUnitId;
  Format format = Format::interstitial;
  double bidFloor = 0;
};

// --ad-unit (required), --format interstitial|rewarded, --bid-floor; absent (after printing
// why) when they do not fit.
std::optional<AdOptions> readAdOptions(const Options& options);

// {"domain": …, "code": …, "description": …}
nlohmann::ordered_json errorJson(const Error& error);

}  // namespace vemba::inspect
