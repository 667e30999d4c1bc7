// The deterministic backend for unit tests: every service of the seam, with settable values.
// Construct one per test and install it with a ScopedServices (see install()).
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "FakeApplication.h"
#include "FakeHttpClient.h"
#include "FakeMainQueue.h"
#include "FakeUi.h"
#include "platform/DeviceInfo.h"
#include "platform/LogSink.h"
#include "platform/ScopedServices.h"

namespace vemba::fake {

class FakeDevice final : public platform::DeviceInfo,
                         public platform::BundleInfo,
                         public platform::AdvertisingIdProvider {
 public:
  std::string systemVersionValue = "17.4.1";
  std::string modelValue = "iPhone";
  std::optional<std::string> bundleIdentifierValue = "com.example.host";
  bool hasInfoDictionaryValue = true;
  std::optional<platform::InfoValue> shortVersionValue =
      platform::InfoValue{platform::InfoValue::Kind::string, "2.3"};
  platform::Uuid advertisingIdValue{};
  std::vector<std::pair<std::string, std::string>> localizedStrings;  // key -> value
  mutable int deviceReads = 0;

  std::string systemVersion() const override;
  std::string model() const override;
  std::optional<std::string> bundleIdentifier() const override { return bundleIdentifierValue; }
  bool hasInfoDictionary() const override { return hasInfoDictionaryValue; }
  std::optional<platform::InfoValue> infoValue(std::string_view key) const override;
  std::string localizedString(std::string_view key, std::string_view defaultValue,
                              std::string_view table) const override;
  platform::Uuid advertisingIdentifier() const override { return advertisingIdValue; }
};

// Hands out 00000000-0000-4000-8000-000000000001, ...02, ... in order.
class SequentialUuids final : public platform::UuidSource {
 public:
  platform::Uuid randomUuid() override;

 private:
  std::uint64_t next_ = 1;
};

class RecordingLogSink final : public platform::LogSink {
 public:
  struct Line {
    platform::LogSeverity severity;
    std::string subsystem;
    std::string category;
    std::string text;
  };
  void write(platform::LogSeverity severity, std::string_view subsystem, std::string_view category,
             std::string_view line) override;
  std::vector<Line> lines;
};

class FakePlatform {
 public:
  FakePlatform();
  FakePlatform(const FakePlatform&) = delete;
  FakePlatform& operator=(const FakePlatform&) = delete;
  const platform::Services& services() const { return services_; }

  FakeMainQueue mainQueue;
  FakeHttpClient http;
  FakeDevice device;
  SequentialUuids uuids;
  RecordingLogSink log;
  FakeUi ui{mainQueue};
  FakeApplication application;
  // False plays a process without a display: platform::ui() and application() are then null.
  bool displayAvailable = true;
  // False plays a process whose user interface nothing has started yet: platform::uiIfStarted()
  // is then null, while platform::ui() would start it.
  bool uiStarted = true;

 private:
  platform::Services services_;
};

// A FakePlatform installed as the process's services for the lifetime of this object.
class InstalledFakePlatform : public FakePlatform {
 public:
  InstalledFakePlatform() : scope_(services()) {}

 private:
  platform::ScopedServices scope_;
};

}  // namespace vemba::fake
