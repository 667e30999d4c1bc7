#include "ads/bidding/BidRecordsJson.h"

#include <cmath>
#include <cstdint>
#include <string>

#include "common/JsonFields.h"

namespace vemba::ads {
namespace {

using json::field;
using json::fields;
using json::Json;
using json::JsonPath;

// A number the exchange must be able to read back: encoding a non-finite one fails.
struct FiniteNumber {
  static double decode(const Json& value, const JsonPath& path) {
    return json::decodeDouble(value, path);
  }
  static Json encode(double value) {
    if (!std::isfinite(value)) {
      throw EncodingFailure{"a number is not finite"};
    }
    return value;
  }
};

// A flag as OpenRTB codes one: the integer 1 or 0, never a JSON boolean; anything else fails.
struct IntegerFlag {
  static bool decode(const Json& value, const JsonPath& path) {
    const std::int64_t number = json::decodeInt(value, path);
    if (number != 0 && number != 1) {
      json::fail(json::DecodingError::Kind::dataCorrupted, path,
                 "Expected 0 or 1 but found " + std::to_string(number) + " instead.");
    }
    return number == 1;
  }
  static Json encode(bool value) { return value ? 1 : 0; }
};

// A format marker: any non-null value marks the format when read; written as {}.
template <typename Marker>
struct MarkerCodec {
  static Marker decode(const Json& /*value*/, const JsonPath& /*path*/) { return Marker{}; }
  static Json encode(const Marker& /*marker*/) { return Json::object(); }
};

}  // namespace

constexpr auto jsonFields(json::Tag<Impression> /*record*/) {
  return fields(field("id", &Impression::id), field("tagid", &Impression::tagid),
                field<MarkerCodec<Interstitial>>("interstitial", &Impression::interstitial),
                field<MarkerCodec<Rewarded>>("rewarded", &Impression::rewarded),
                field<FiniteNumber>("bidfloor", &Impression::bidfloor));
}

constexpr auto jsonFields(json::Tag<AppInfo> /*record*/) {
  return fields(field("bundle", &AppInfo::bundle), field("ver", &AppInfo::ver));
}

constexpr auto jsonFields(json::Tag<DeviceInfo> /*record*/) {
  using R = DeviceInfo;
  return fields(field("ifa", &R::ifa), field("ua", &R::ua), field("ip", &R::ip),
                field("os", &R::os), field("osv", &R::osv), field("model", &R::model),
                field("connection", &R::connection), field<IntegerFlag>("lmt", &R::lmt));
}

constexpr auto jsonFields(json::Tag<Regs> /*record*/) {
  return fields(field<IntegerFlag>("coppa", &Regs::coppa), field<IntegerFlag>("gdpr", &Regs::gdpr),
                field("us_privacy", &Regs::us_privacy), field("gpp", &Regs::gpp),
                field("gpp_sid", &Regs::gpp_sid));
}

constexpr auto jsonFields(json::Tag<User> /*record*/) {
  return fields(field("consent", &User::consent));
}

constexpr auto jsonFields(json::Tag<BidRequest> /*record*/) {
  return fields(field("id", &BidRequest::id), field("app", &BidRequest::app),
                field("device", &BidRequest::device), field("imp", &BidRequest::imp),
                field("regs", &BidRequest::regs), field("user", &BidRequest::user));
}

constexpr auto jsonFields(json::Tag<Bid> /*record*/) {
  return fields(field("id", &Bid::id), field("impid", &Bid::impid),
                field<FiniteNumber>("price", &Bid::price), field("adm", &Bid::adm),
                field("iurl", &Bid::iurl), field("burl", &Bid::burl));
}

constexpr auto jsonFields(json::Tag<SeatBid> /*record*/) {
  return fields(field("bid", &SeatBid::bid));
}

constexpr auto jsonFields(json::Tag<BidResponse> /*record*/) {
  return fields(field("id", &BidResponse::id), field("bidid", &BidResponse::bidid),
                field("seatbid", &BidResponse::seatbid), field("cur", &BidResponse::cur));
}

Json encode(const BidRequest& value) {
  return json::encodeRecord(value);
}

Json encode(const BidResponse& value) {
  return json::encodeRecord(value);
}

Impression decodeImpression(const Json& value, const JsonPath& path) {
  return json::decodeRecord<Impression>(value, path);
}

Expected<std::string, EncodingFailure> encodeBidRequestText(const BidRequest& request) {
  try {
    return json::dumpCompact(encode(request));
  } catch (const EncodingFailure& failure) {
    return Unexpected{failure};
  } catch (const Json::exception& failure) {  // invalid UTF-8 in a string
    return Unexpected{EncodingFailure{failure.what()}};
  }
}

Expected<BidResponse, json::DecodingError> decodeBidResponseText(std::string_view text) {
  return json::decodeText(text, json::decodeRecord<BidResponse>);
}

Expected<BidRequest, json::DecodingError> decodeBidRequestText(std::string_view text) {
  return json::decodeText(text, json::decodeRecord<BidRequest>);
}

}  // namespace vemba::ads
