#include "ads/bidding/BidRecordsJson.h"

#include <cmath>

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

}  // namespace

Json encode(const Impression& value) {
  Json out = Json::object();
  out["id"] = value.id;
  if (value.tagid) {
    out["tagid"] = *value.tagid;
  }
  if (value.interstitial) {
    out["interstitial"] = Json::object();
  }
  if (value.rewarded) {
    out["rewarded"] = Json::object();
  }
  if (value.bidfloor) {
    out["bidfloor"] = number(*value.bidfloor);
  }
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
  Json imp = Json::array();
  for (const Impression& impression : value.imp) {
    imp.push_back(encode(impression));
  }
  return Json{{"id", value.id},
              {"app", encode(value.app)},
              {"device", encode(value.device)},
              {"imp", std::move(imp)}};
}

Json encode(const Bid& value) {
  Json out = Json::object();
  if (value.id) {
    out["id"] = *value.id;
  }
  out["impid"] = value.impid;
  out["price"] = number(value.price);
  if (value.adm) {
    out["adm"] = *value.adm;
  }
  if (value.iurl) {
    out["iurl"] = *value.iurl;
  }
  if (value.burl) {
    out["burl"] = *value.burl;
  }
  return out;
}

Json encode(const SeatBid& value) {
  Json bids = Json::array();
  for (const Bid& bid : value.bid) {
    bids.push_back(encode(bid));
  }
  return Json{{"bid", std::move(bids)}};
}

Json encode(const BidResponse& value) {
  Json out = Json::object();
  out["id"] = value.id;
  if (value.bidid) {
    out["bidid"] = *value.bidid;
  }
  if (value.seatbid) {
    Json seats = Json::array();
    for (const SeatBid& seat : *value.seatbid) {
      seats.push_back(encode(seat));
    }
    out["seatbid"] = std::move(seats);
  }
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
  out.app = decodeAppInfo(json::requireKey(object, "app", path), path / "app");
  out.device = decodeDeviceInfo(json::requireKey(object, "device", path), path / "device");
  out.imp =
      json::decodeArray(json::requireKey(object, "imp", path), path / "imp", decodeImpression);
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
  return SeatBid{json::decodeArray(json::requireKey(object, "bid", path), path / "bid", decodeBid)};
}

BidResponse decodeBidResponse(const Json& value, const JsonPath& path) {
  const Json& object = json::requireObject(value, path);
  BidResponse out;
  out.id = json::requireString(object, "id", path);
  out.bidid = json::optionalString(object, "bidid", path);
  if (const Json* seats = json::optionalKey(object, "seatbid")) {
    out.seatbid = json::decodeArray(*seats, path / "seatbid", decodeSeatBid);
  }
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
