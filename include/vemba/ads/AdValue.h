// What one impression of an ad earned, as its winning bid says.
#pragma once

#include <cstdint>
#include <string>

#include "vemba/Export.h"

namespace vemba {

struct VEMBA_EXPORT AdValue {
  // The bid's price read as a CPM: one impression earns price × 1000 micros of the currency,
  // rounded to the nearest micro.
  std::int64_t valueMicros = 0;
  std::string currencyCode;  // the bid response's "cur", or "USD" when it has none
  std::string precision;     // "estimated": the bid's price, not what the exchange billed

  friend bool operator==(const AdValue&, const AdValue&) = default;
};

}  // namespace vemba
