// What the load soak asks the local exchange to do, one kind per load in turn, and what the host
// must hear for each: the fault (a behaviour of tools/exchange/exchange.py and its parameters)
// and the class of the one callback it earns. Plain data; any thread.
#pragma once

#include <nlohmann/json.hpp>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace vemba::soak {

// The class of the one callback a kept ad earns.
enum class Outcome {
  loaded,     // adDidLoad
  noBid,      // adDidFailToLoad with VembaError.noBid
  decoding,   // adDidFailToLoad with a DecodingError
  transport,  // adDidFailToLoad with a URLError
};

std::string_view outcomeName(Outcome outcome);

struct LoadFault {
  std::string_view name;       // as printed in the figures
  std::string_view behaviour;  // the exchange's behaviour
  nlohmann::json parameters;   // its parameters (an object)
  Outcome expected;
  std::optional<int> urlErrorCode;  // for transport: the URLError code, when one is certain
};

// Every kind, in the order the soak cycles through them.
std::span<const LoadFault> loadFaults();

// The ad unit that makes the exchange answer with `fault` ("exchange:<behaviour>?k=v&...").
std::string adUnitFor(const LoadFault& fault);
// The same answer held back `delaySeconds` after the exchange receives the request: for the ads
// the soak releases while their request is still in flight.
std::string delayedAdUnitFor(const LoadFault& fault, double delaySeconds);

}  // namespace vemba::soak
