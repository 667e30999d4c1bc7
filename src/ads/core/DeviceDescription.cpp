#include "ads/core/DeviceDescription.h"

#include "platform/DeviceInfo.h"
#include "platform/Services.h"

namespace vemba::ads {

AppInfo currentAppInfo() {
  const platform::BundleInfo& bundle = *platform::services().bundle;
  AppInfo app;
  app.bundle = bundle.bundleIdentifier().value_or(kUnknownBundle);
  app.ver = kDefaultAppVersion;
  if (bundle.hasInfoDictionary()) {
    const std::optional<platform::InfoValue> version =
        bundle.infoValue(platform::kBundleShortVersionKey);
    if (version && version->kind == platform::InfoValue::Kind::string) {
      app.ver = version->text;
    }
  }
  return app;
}

DeviceInfo currentDeviceInfo(const std::string& userAgent) {
  const platform::Services& services = platform::services();
  DeviceInfo device;
  device.ifa = platform::uuidString(services.advertisingId->advertisingIdentifier());
  device.ua = userAgent;
  device.ip = kDeviceIp;
  device.os = kDeviceOs;
  device.osv = services.device->systemVersion();
  device.model = services.device->model();
  device.connection = kDeviceConnection;
  return device;
}

}  // namespace vemba::ads
