#include "ads/core/UserAgentFetcher.h"

#include <algorithm>

#include "ads/core/AdsState.h"
#include "platform/DeviceInfo.h"
#include "platform/Services.h"

namespace vemba {
namespace {
constexpr const char* kPrefix = "Mozilla/5.0 (";
constexpr const char* kCpu = "; CPU ";
constexpr const char* kOs = " OS ";
// The engine and build tokens are fixed text and never follow the system version.
constexpr const char* kSuffix =
    " like Mac OS X) AppleWebKit/605.1.15 (KHTML, like Gecko) Mobile/15E148";
}  // namespace

UserAgentFetcher& UserAgentFetcher::shared() {
  return ads::state().userAgent;
}

std::string UserAgentFetcher::compose(const std::string& model, const std::string& systemVersion) {
  std::string version = systemVersion;
  std::replace(version.begin(), version.end(), '.', '_');
  // The model stands in both places on every device family.
  std::string out = kPrefix;
  out += model;
  out += kCpu;
  out += model;
  out += kOs;
  out += version;
  out += kSuffix;
  return out;
}

std::string UserAgentFetcher::userAgent() {
  const MutexLock lock(mutex_);
  if (!cachedUserAgent_) {
    const platform::DeviceInfo& device = *platform::services().device;
    cachedUserAgent_ = compose(device.model(), device.systemVersion());
  }
  return *cachedUserAgent_;
}

std::optional<std::string> UserAgentFetcher::cachedUserAgent() const {
  const MutexLock lock(mutex_);
  return cachedUserAgent_;
}

}  // namespace vemba
