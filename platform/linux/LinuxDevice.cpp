#include "LinuxDevice.h"

#include <gio/gio.h>
#include <sys/random.h>
#include <sys/utsname.h>

#include <cerrno>
#include <cstddef>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "common/ThreadSafety.h"
#include "vemba/linux/LinuxPlatform.h"

namespace vemba::linux_platform {
namespace {

// What the host told the library about its application (vemba/linux/LinuxPlatform.h).
struct HostBundle {
  bool set = false;
  std::optional<std::string> identifier;
  std::optional<std::string> shortVersion;
};

Mutex& hostBundleMutex() {
  static Mutex mutex;
  return mutex;
}

HostBundle& hostBundle() VEMBA_REQUIRES(hostBundleMutex()) {
  static HostBundle bundle;
  return bundle;
}

HostBundle currentHostBundle() {
  const MutexLock lock(hostBundleMutex());
  return hostBundle();
}

std::optional<std::string> defaultApplicationId() {
  GApplication* application = g_application_get_default();
  if (application == nullptr) {
    return std::nullopt;
  }
  const gchar* id = g_application_get_application_id(application);
  if (id == nullptr) {
    return std::nullopt;
  }
  return std::string(id);
}

}  // namespace

std::string systemVersionFromRelease(std::string_view release) {
  if (release.empty() || release.front() < '0' || release.front() > '9') {
    return std::string(release);
  }
  std::size_t end = 0;
  while (end < release.size() &&
         ((release[end] >= '0' && release[end] <= '9') || release[end] == '.')) {
    ++end;
  }
  while (end > 0 && release[end - 1] == '.') {
    --end;
  }
  return std::string(release.substr(0, end));
}

std::string LinuxDevice::systemVersion() const {
  struct utsname names {};
  if (uname(&names) != 0) {
    throw std::system_error(errno, std::generic_category(), "uname");
  }
  return systemVersionFromRelease(names.release);
}

std::string LinuxDevice::model() const {
  return std::string(kModel);
}

std::optional<std::string> LinuxDevice::bundleIdentifier() const {
  HostBundle host = currentHostBundle();
  if (host.identifier) {
    return std::move(host.identifier);
  }
  return defaultApplicationId();
}

bool LinuxDevice::hasInfoDictionary() const {
  return currentHostBundle().set;
}

std::optional<platform::InfoValue> LinuxDevice::infoValue(std::string_view key) const {
  HostBundle host = currentHostBundle();
  std::optional<std::string>* value = nullptr;
  if (key == kIdentifierKey) {
    value = &host.identifier;
  } else if (key == kShortVersionKey) {
    value = &host.shortVersion;
  }
  if (!host.set || value == nullptr || !*value) {
    return std::nullopt;
  }
  return platform::InfoValue{platform::InfoValue::Kind::string, std::move(**value)};
}

std::string LinuxDevice::localizedString(std::string_view /*key*/, std::string_view defaultValue,
                                         std::string_view /*table*/) const {
  return std::string(defaultValue);
}

platform::Uuid LinuxDevice::advertisingIdentifier() const {
  return platform::Uuid{};
}

platform::Uuid RandomUuidSource::randomUuid() {
  platform::Uuid uuid{};
  std::size_t filled = 0;
  while (filled < uuid.size()) {
    const ssize_t got = getrandom(uuid.data() + filled, uuid.size() - filled, 0);
    if (got < 0) {
      if (errno == EINTR) {
        continue;
      }
      throw std::system_error(errno, std::generic_category(), "getrandom");
    }
    filled += static_cast<std::size_t>(got);
  }
  uuid[6] = static_cast<std::uint8_t>((uuid[6] & 0x0F) | 0x40);  // version 4
  uuid[8] = static_cast<std::uint8_t>((uuid[8] & 0x3F) | 0x80);  // RFC 4122 variant
  return uuid;
}

std::chrono::system_clock::time_point SystemClock::wallNow() const {
  return std::chrono::system_clock::now();
}

std::chrono::steady_clock::time_point SystemClock::monotonicNow() const {
  return std::chrono::steady_clock::now();
}

}  // namespace vemba::linux_platform

namespace vemba {

void setBundleInfo(std::optional<std::string> identifier, std::optional<std::string> shortVersion) {
  const MutexLock lock(linux_platform::hostBundleMutex());
  linux_platform::hostBundle() = {true, std::move(identifier), std::move(shortVersion)};
}

void clearBundleInfo() {
  const MutexLock lock(linux_platform::hostBundleMutex());
  linux_platform::hostBundle() = {};
}

}  // namespace vemba
