// JSON encoding and decoding of the bid records. Decoding follows the house rules of
// common/JsonDecoding.h; encoding leaves absent optionals out and escapes "/" in strings.
#pragma once

#include <string>
#include <string_view>

#include "ads/bidding/BidRecords.h"
#include "common/DecodingError.h"
#include "common/JsonDecoding.h"
#include "vemba/Expected.h"

namespace vemba::ads {

// Thrown by encoders when a value cannot be written as JSON (invalid UTF-8 in a string, a
// non-finite number).
struct EncodingFailure {
  std::string reason;
};

// Single records as JSON values, each described once by a field table in BidRecordsJson.cpp.
// encode() throws EncodingFailure; decodeImpression() throws json::DecodingFailure.
json::Json encode(const BidRequest& value);
json::Json encode(const BidResponse& value);
Impression decodeImpression(const json::Json& value, const json::JsonPath& path);

// The request body as sent: compact JSON text. Fails with the reason when it cannot be encoded.
Expected<std::string, EncodingFailure> encodeBidRequestText(const BidRequest& request);
// A whole response body.
Expected<BidResponse, json::DecodingError> decodeBidResponseText(std::string_view text);
Expected<BidRequest, json::DecodingError> decodeBidRequestText(std::string_view text);

}  // namespace vemba::ads
