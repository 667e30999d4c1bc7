// Where the app and device values of a bid request come from. Read afresh for every request
// (only the user agent is cached, by UserAgentFetcher). Thread-safe.
#pragma once

#include <string>

#include "ads/bidding/BidRecords.h"

namespace vemba::ads {

inline constexpr const char* kUnknownBundle = "unknown.bundle";
inline constexpr const char* kDefaultAppVersion = "1.0";
inline constexpr const char* kDeviceIp = "";
inline constexpr const char* kDeviceOs = "iOS";
// No reachability check is made: the connection is always reported as wifi.
inline constexpr const char* kDeviceConnection = "wifi";

AppInfo currentAppInfo();
DeviceInfo currentDeviceInfo(const std::string& userAgent);

}  // namespace vemba::ads
