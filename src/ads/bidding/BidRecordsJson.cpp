#include "ads/bidding/BidRecordsJson.h"

#include <cmath>

#include "common/JsonFields.h"

namespace vemba::ads {
namespace {

using json::Json;
using json::JsonPath;

Json number(double value) {
  if (!std::isfinite(value)) {
    throw EncodingFailure{"a number is not finite"};
  }
  return Json(value);
}

// Overloaded encode() as one callable, for the array helpers.
constexpr auto encodeRecord = [](const auto& record) { return encode(record); };

}  // namespace

Json encode(const Impression& value) {
  Json out = Json::object();
  json::put(out, "id", value.id);
  json::putOptional(out, "tagid", value.tagid);
  json::putOptional(out, "interstitial", value.interstitial,
                    [](Interstitial) { return Json::object(); });
  json::putOptional(out, "rewarded", value.rewarded, [](Rewarded) { return Json::object(); });
  json::putOptional(out, "bidfloor", value.bidfloor, number);
  return out;
}

Json encode(const AppInfo& value) {
  return Json{{"bundle", value.bundle}, {"ver", value.ver}};
}

Json encode(const DeviceInfo& value) {
  return Json{{"ifa", value.ifa},
              {"ua", value.ua},
              {"ip", value.ip},
              {"os", value.os},
              {"osv", value.osv},
              {"model", value.model},
              {"connection", value.connection}};
}

Json encode(const BidRequest& value) {
  return Json{{"id", value.id},
              {"app", encode(value.app)},
              {"device", encode(value.device)},
              {"imp", json::encodeArray(value.imp, encodeRecord)}};
}

Json encode(const Bid& value) {
  Json out = Json::object();
  json::putOptional(out, "id", value.id);
  json::put(out, "impid", value.impid);
  json::put(out, "price", number(value.price));
  json::putOptional(out, "adm", value.adm);
  json::putOptional(out, "iurl", value.iurl);
  json::putOptional(out, "burl", value.burl);
  return out;
}

Json encode(const SeatBid& value) {
  return Json{{"bid", json::encodeArray(value.bid, encodeRecord)}};
}

Json encode(const BidResponse& value) {
  Json out = Json::object();
  json::put(out, "id", value.id);
  json::putOptional(out, "bidid", value.bidid);
  json::putOptional(out, "seatbid", value.seatbid, json::arrayEncoder(encodeRecord));
  return out;
}

Impression decodeImpression(const Json& value, const JsonPath& path) {
  const Json& object = json::requireObject(value, path);
  Impression out;
  out.id = json::requireString(object, "id", path);
  out.tagid = json::optionalString(object, "tagid", path);
  // The markers read nothing: any non-null value marks the format.
  if (json::optionalKey(object, "interstitial") != nullptr) {
    out.interstitial = Interstitial{};
  }
  if (json::optionalKey(object, "rewarded") != nullptr) {
    out.rewarded = Rewarded{};
  }
  out.bidfloor = json::optionalDouble(object, "bidfloor", path);
  return out;
}

AppInfo decodeAppInfo(const Json& value, const JsonPath& path) {
  const Json& object = json::requireObject(value, path);
  return AppInfo{json::requireString(object, "bundle", path),
                 json::requireString(object, "ver", path)};
}

DeviceInfo decodeDeviceInfo(const Json& value, const JsonPath& path) {
  const Json& object = json::requireObject(value, path);
  return DeviceInfo{
      json::requireString(object, "ifa", path),       json::requireString(object, "ua", path),
      json::requireString(object, "ip", path),        json::requireString(object, "os", path),
      json::requireString(object, "osv", path),       json::requireString(object, "model", path),
      json::requireString(object, "connection", path)};
}

BidRequest decodeBidRequest(const Json& value, const JsonPath& path) {
  const Json& object = json::requireObject(value, path);
  BidRequest out;
  out.id = json::requireString(object, "id", path);
  out.app = json::requireField(object, "app", path, decodeAppInfo);
  out.device = json::requireField(object, "device", path, decodeDeviceInfo);
  out.imp = json::requireField(object, "imp", path, json::arrayOf(decodeImpression));
  return out;
}

Bid decodeBid(const Json& value, const JsonPath& path) {
  const Json& object = json::requireObject(value, path);
  Bid out;
  out.id = json::optionalString(object, "id", path);
  out.impid = json::requireString(object, "impid", path);
  out.price = json::requireDouble(object, "price", path);
  out.adm = json::optionalString(object, "adm", path);
  out.iurl = json::optionalString(object, "iurl", path);
  out.burl = json::optionalString(object, "burl", path);
  return out;
}

SeatBid decodeSeatBid(const Json& value, const JsonPath& path) {
  const Json& object = json::requireObject(value, path);
  return SeatBid{json::requireField(object, "bid", path, json::arrayOf(decodeBid))};
}

BidResponse decodeBidResponse(const Json& value, const JsonPath& path) {
  const Json& object = json::requireObject(value, path);
  BidResponse out;
  out.id = json::requireString(object, "id", path);
  out.bidid = json::optionalString(object, "bidid", path);
  out.seatbid = json::optionalField(object, "seatbid", path, json::arrayOf(decodeSeatBid));
  return out;
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
  return json::decodeText(text, decodeBidResponse);
}

Expected<BidRequest, json::DecodingError> decodeBidRequestText(std::string_view text) {
  return json::decodeText(text, decodeBidRequest);
}

}  // namespace vemba::ads
