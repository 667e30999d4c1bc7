// What the ad commands share: the ad's options on the command line and the printed form of a
// load error.
#pragma once

#include <nlohmann/json.hpp>
#include <optional>
#include <set>
#include <string>

#include "Options.h"
#include "vemba/Error.h"
#include "vemba/ads/VembaPrivacy.h"

namespace vemba::inspect {

enum class Format { interstitial, rewarded };

struct AdOptions {
  std::string adUnitId;
  Format format = Format::interstitial;
  double bidFloor = 0;
  VembaPrivacy privacy;
};

// The valued options readAdOptions() reads, for Options::parse().
std::set<std::string> adOptionNames();

// --ad-unit (required), --format interstitial|rewarded, --bid-floor, and the privacy signals
// --gdpr 0|1, --tcf-consent S, --gpp S, --gpp-sid 2,6, --us-privacy S, --coppa 0|1, --lmt 0|1;
// absent (after printing why) when they do not fit.
std::optional<AdOptions> readAdOptions(const Options& options);

// {"domain": …, "code": …, "description": …}
nlohmann::ordered_json errorJson(const Error& error);

}  // namespace vemba::inspect
