// The records exchanged with the ad exchange: one request per load (one impression, the app and
// the device) and a response of seats of bids. Plain immutable values; JSON lives in
// BidRecordsJson.h.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace vemba::ads {

// Format markers: no fields; encode as {} and accept any JSON value when decoded.
struct Interstitial {
  friend bool operator==(const Interstitial&, const Interstitial&) = default;
};
struct Rewarded {
  friend bool operator==(const Rewarded&, const Rewarded&) = default;
};

struct Impression {
  std::string id;
  std::optional<std::string> tagid;
  std::optional<Interstitial> interstitial;
  std::optional<Rewarded> rewarded;
  std::optional<double> bidfloor;
  friend bool operator==(const Impression&, const Impression&) = default;
};

struct AppInfo {
  std::string bundle;
  std::string ver;
  friend bool operator==(const AppInfo&, const AppInfo&) = default;
};

struct DeviceInfo {
  std::string ifa;
  std::string ua;
  std::string ip;
  std::string os;
  std::string osv;
  std::string model;
  std::string connection;
  friend bool operator==(const DeviceInfo&, const DeviceInfo&) = default;
};

struct BidRequest {
  std::string id;
  AppInfo app;
  DeviceInfo device;
  std::vector<Impression> imp;
  friend bool operator==(const BidRequest&, const BidRequest&) = default;
};

struct Bid {
  std::optional<std::string> id;
  std::string impid;
  double price = 0;
  std::optional<std::string> adm;
  std::optional<std::string> iurl;
  std::optional<std::string> burl;
  friend bool operator==(const Bid&, const Bid&) = default;
};

struct SeatBid {
  std::vector<Bid> bid;
  friend bool operator==(const SeatBid&, const SeatBid&) = default;
};

struct BidResponse {
  std::string id;
  std::optional<std::string> bidid;
  std::optional<std::vector<SeatBid>> seatbid;
  friend bool operator==(const BidResponse&, const BidResponse&) = default;
};

}  // namespace vemba::ads
