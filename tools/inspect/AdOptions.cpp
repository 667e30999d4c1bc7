#include "AdOptions.h"

#include <charconv>
#include <cstdint>
#include <cstdio>
#include <utility>
#include <vector>

namespace vemba::inspect {
namespace {

// "0" or "1" as a flag; false (after printing why) for anything else.
bool readFlag(const Options& options, const std::string& name, std::optional<bool>& out) {
  const std::optional<std::string> text = options.value(name);
  if (!text) {
    return true;
  }
  if (*text != "0" && *text != "1") {
    std::fprintf(stderr, "vemba-inspect: %s takes 0 or 1, not '%s'\n", name.c_str(), text->c_str());
    return false;
  }
  out = *text == "1";
  return true;
}

// Comma-separated integers ("2,6"); false (after printing why) for anything else.
bool readIntegers(const Options& options, const std::string& name,
                  std::optional<std::vector<std::int64_t>>& out) {
  const std::optional<std::string> text = options.value(name);
  if (!text) {
    return true;
  }
  std::vector<std::int64_t> values;
  const char* at = text->data();
  const char* const end = text->data() + text->size();
  while (true) {
    std::int64_t value = 0;
    const auto [stop, failure] = std::from_chars(at, end, value);
    if (failure != std::errc() || (stop != end && *stop != ',')) {
      std::fprintf(stderr, "vemba-inspect: %s takes integers like 2,6, not '%s'\n", name.c_str(),
                   text->c_str());
      return false;
    }
    values.push_back(value);
    if (stop == end) {
      break;
    }
    at = stop + 1;
  }
  out = std::move(values);
  return true;
}

}  // namespace

std::set<std::string> adOptionNames() {
  return {"--ad-unit", "--format",     "--bid-floor", "--gdpr",  "--tcf-consent",
          "--gpp",     "--us-privacy", "--gpp-sid",   "--coppa", "--lmt"};
}

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
  VembaPrivacy& privacy = out.privacy;
  privacy.tcfConsent = options.value("--tcf-consent");
  privacy.gpp = options.value("--gpp");
  privacy.usPrivacy = options.value("--us-privacy");
  ok = ok && readFlag(options, "--gdpr", privacy.gdprApplies) &&
       readFlag(options, "--coppa", privacy.childDirected) &&
       readFlag(options, "--lmt", privacy.limitAdTracking) &&
       readIntegers(options, "--gpp-sid", privacy.gppSectionIds);
  return ok ? std::optional(out) : std::nullopt;
}

nlohmann::ordered_json errorJson(const Error& error) {
  return {{"domain", error.domain}, {"code", error.code}, {"description", error.description}};
}

}  // namespace vemba::inspect
