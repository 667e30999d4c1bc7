#include "AdOptions.h"

#include <cstdio>

namespace vemba::inspect {

std::optional<AdOptions> readAdOptions(const Options& options) {
  AdOptions out;
  const std::optional<std::string> unit = options.value("--ad-unit");
  if (!unit) {
    std::fputs("vemba-inspect: --ad-unit is required\n", stderr);
    return std::nullopt;
  }
  out.adUnitId = *unit;
  if (const std::optional<std::string> format = options.value("--format")) {
    if (*format == "interstitial") {
      out.format = Format::interstitial;
    } else if (*format == "rewarded") {
      out.format = Format::rewarded;
    } else {
      std::fprintf(stderr, "vemba-inspect: unknown format '%s'\n", format->c_str());
      return std::nullopt;
    }
  }
  bool ok = true;
  out.bidFloor = options.number("--bid-floor", ok).value_or(0);
  return ok ? std::optional(out) : std::nullopt;
}

nlohmann::ordered_json errorJson(const Error& error) {
  return {{"domain", error.domain}, {"code", error.code}, {"description", error.description}};
}

}  // namespace vemba::inspect
