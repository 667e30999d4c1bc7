#include "FakePlatform.h"

namespace vemba::fake {

std::string FakeDevice::systemVersion() const {
  ++deviceReads;
  return systemVersionValue;
}

std::string FakeDevice::model() const {
  ++deviceReads;
  return modelValue;
}

std::optional<platform::InfoValue> FakeDevice::infoValue(std::string_view key) const {
  if (key == platform::kBundleShortVersionKey) {
    return shortVersionValue;
  }
  return std::nullopt;
}

std::string FakeDevice::localizedString(std::string_view key, std::string_view defaultValue,
                                        std::string_view /*table*/) const {
  for (const auto& [k, v] : localizedStrings) {
    if (k == key) {
      return v;
    }
  }
  return std::string(defaultValue);
}

platform::Uuid SequentialUuids::randomUuid() {
  platform::Uuid uuid{};
  uuid[6] = 0x40;
  uuid[8] = 0x80;
  std::uint64_t value = next_++;
  for (std::size_t i = 15; i >= 10 && value != 0; --i) {
    uuid[i] = static_cast<std::uint8_t>(value & 0xFF);
    value >>= 8;
  }
  return uuid;
}

void RecordingLogSink::write(platform::LogSeverity severity, std::string_view subsystem,
                             std::string_view category, std::string_view line) {
  lines.push_back(Line{severity, std::string(subsystem), std::string(category), std::string(line)});
}

FakePlatform::FakePlatform() {
  services_.http = &http;
  services_.mainQueue = &mainQueue;
  services_.clock = &mainQueue;
  services_.device = &device;
  services_.bundle = &device;
  services_.advertisingId = &device;
  services_.uuids = &uuids;
  services_.log = &log;
  services_.ui = [this]() -> platform::Ui* { return displayAvailable ? &ui : nullptr; };
  services_.uiStarted = [this] { return displayAvailable && uiStarted; };
  services_.application = [this]() -> platform::Application* {
    return displayAvailable ? &application : nullptr;
  };
}

}  // namespace vemba::fake

namespace vemba::platform {

// Binaries linked with the fake backend and no installed override get one process-wide fake.
const Services& defaultServices() {
  static auto* const platform = new fake::FakePlatform();
  return platform->services();
}

}  // namespace vemba::platform
