// The records exchanged with the ad exchange: one request per load (one impression, the app and
// the device) and a response of seats of bids. Plain immutable values; JSON lives in
// BidRecordsJson.h.
#pragma once

#include <cstdint>
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
  std::optional<bool> lmt{};  // coded as 1 or 0
  friend bool operator==(const DeviceInfo&, const DeviceInfo&) = default;
};

// Regulations in force for the request (OpenRTB 2.6 names); the flags are coded as 1 or 0.
struct Regs {
  std::optional<bool> coppa{};
  std::optional<bool> gdpr{};
  std::optional<std::string> us_privacy{};
  std::optional<std::string> gpp{};
  std::optional<std::vector<std::int64_t>> gpp_sid{};
  friend bool operator==(const Regs&, const Regs&) = default;
};

struct User {
  std::optional<std::string> consent;
  friend bool operator==(const User&, const User&) = default;
};

struct BidRequest {
  std::string id;
  AppInfo app;
  DeviceInfo device;
  std::vector<Impression> imp;
  std::optional<Regs> regs{};
  std::optional<User> user{};
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
  std::optional<std::string> cur{};  // the currency of the prices
  friend bool operator==(const BidResponse&, const BidResponse&) = default;
};

}  // namespace vemba::ads
