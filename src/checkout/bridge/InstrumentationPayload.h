// The measurement the kit sends to the checkout page in an "instrumentation" message, and the
// envelope of every kit-to-page message body. Value types.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "common/DecodingError.h"
#include "vemba/Expected.h"

namespace vemba::checkout {

enum class InstrumentationType { histogram };

std::string_view rawValue(InstrumentationType type);  // "histogram"

struct InstrumentationPayload {
  std::string name;
  std::int64_t value = 0;
  InstrumentationType type = InstrumentationType::histogram;
  std::map<std::string, std::string> tags;

  friend bool operator==(const InstrumentationPayload&, const InstrumentationPayload&) = default;
};

// The body of a message sent to the page: {"detail": <Detail>}.
template <typename Detail>
struct SdkToWebEvent {
  Detail detail;

  friend bool operator==(const SdkToWebEvent&, const SdkToWebEvent&) = default;
};

// JSON coding, keys "detail"; "name", "value", "type", "tags".
// The JSON text of `event`, or absent when it cannot be encoded; the failure is then written to
// the log sink at error severity, whatever the kit's log level, as
// "toJson() unencodableInstrumentation(<error>)".
std::optional<std::string> toJson(const SdkToWebEvent<InstrumentationPayload>& event);

// Reads the text back (strict, unknown keys ignored).
Expected<SdkToWebEvent<InstrumentationPayload>, json::DecodingError>
decodeInstrumentationSdkToWebEvent(std::string_view text);

}  // namespace vemba::checkout
