#include "vemba/checkout/MetaData.h"

namespace vemba::checkout {
namespace {
constexpr std::string_view kAcceleratedCheckouts = "AcceleratedCheckouts";
constexpr std::string_view kIOS = "iOS";
constexpr std::string_view kReactNative = "ReactNative";
}  // namespace

std::string_view rawValue(MetaData::EntryPoint /*entryPoint*/) {
  return kAcceleratedCheckouts;
}

std::string_view rawValue(MetaData::Platform platform) {
  return platform == MetaData::Platform::iOS ? kIOS : kReactNative;
}

std::string_view rawValue(Platform /*platform*/) {
  return kReactNative;
}

std::optional<MetaData::EntryPoint> entryPointFrom(std::string_view raw) {
  if (raw == kAcceleratedCheckouts) {
    return MetaData::EntryPoint::acceleratedCheckouts;
  }
  return std::nullopt;
}

std::optional<MetaData::Platform> metaDataPlatformFrom(std::string_view raw) {
  if (raw == kIOS) {
    return MetaData::Platform::iOS;
  }
  if (raw == kReactNative) {
    return MetaData::Platform::reactNative;
  }
  return std::nullopt;
}

std::optional<Platform> platformFrom(std::string_view raw) {
  if (raw == kReactNative) {
    return Platform::reactNative;
  }
  return std::nullopt;
}

}  // namespace vemba::checkout
