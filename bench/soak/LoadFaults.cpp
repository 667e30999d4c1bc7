#include "LoadFaults.h"

#include <array>
#include <cstdio>

#include "platform/UrlErrorCode.h"

namespace vemba::soak {
namespace {

namespace url_error = platform::UrlErrorCode;
using nlohmann::json;

constexpr std::string_view kConventionPrefix = "exchange:";
constexpr long kTenMegabytes = 10L * 1000 * 1000;
constexpr long kOverTheClientsLimit = 32L * 1024 * 1024;  // the client refuses more than 16 MiB

const std::array<LoadFault, 13>& table() {
  static const std::array<LoadFault, 13> faults{{
      {"bid", "bid", json::object(), Outcome::loaded, {}},
      {"bid after 0.2 s", "slow", {{"seconds", 0.2}}, Outcome::loaded, {}},
      {"no bid", "nobid", json::object(), Outcome::noBid, {}},
      {"500, a valid bid", "error500", {{"body", "bid"}}, Outcome::loaded, {}},
      {"500, body {}", "error500", json::object(), Outcome::decoding, {}},
      {"503, body text",
       "error500",
       {{"status", 503}, {"body", "unavailable"}},
       Outcome::decoding,
       {}},
      {"truncated JSON", "malformed", json::object(), Outcome::decoding, {}},
      {"empty body", "empty", json::object(), Outcome::decoding, {}},
      {"10 MB body", "huge", {{"bytes", kTenMegabytes}}, Outcome::decoding, {}},
      {"Content-Length too long", "truncated", json::object(), Outcome::transport,
       url_error::networkConnectionLost},
      {"reset mid-body", "reset", json::object(), Outcome::transport,
       url_error::networkConnectionLost},
      {"closed unanswered", "drop", json::object(), Outcome::transport,
       url_error::networkConnectionLost},
      {"32 MiB body",
       "huge",
       {{"bytes", kOverTheClientsLimit}},
       Outcome::transport,
       url_error::dataLengthExceedsMaximum},
  }};
  return faults;
}

// A parameter as the ad-unit convention reads it back: strings as they are, the rest as JSON.
std::string conventionValue(const json& value) {
  return value.is_string() ? value.get<std::string>() : value.dump();
}

}  // namespace

std::string_view outcomeName(Outcome outcome) {
  switch (outcome) {
    case Outcome::loaded:
      return "adDidLoad";
    case Outcome::noBid:
      return "noBid";
    case Outcome::decoding:
      return "DecodingError";
    case Outcome::transport:
      return "URLError";
  }
  return "?";
}

std::span<const LoadFault> loadFaults() {
  return table();
}

std::string adUnitFor(const LoadFault& fault) {
  std::string unit = std::string(kConventionPrefix) + std::string(fault.behaviour);
  char separator = '?';
  for (const auto& [key, value] : fault.parameters.items()) {
    unit += separator + key + "=" + conventionValue(value);
    separator = '&';
  }
  return unit;
}

std::string delayedAdUnitFor(const LoadFault& fault, double delaySeconds) {
  json then = fault.parameters;
  then["behaviour"] = fault.behaviour;
  char seconds[32];
  std::snprintf(seconds, sizeof seconds, "%g", delaySeconds);
  return std::string(kConventionPrefix) + "slow?seconds=" + seconds + "&then=" + then.dump();
}

}  // namespace vemba::soak
