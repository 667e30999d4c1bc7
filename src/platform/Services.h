// The set of platform services the core runs on, chosen at link time.
//
// Every binary links exactly one backend library (platform/linux or platform/fake), which
// defines defaultServices(). Tests may install another set for their duration with
// ScopedServices; production code never switches at run time.
#pragma once

namespace vemba::platform {

class HttpClient;
class MainQueue;
class Clock;
class DeviceInfo;
class BundleInfo;
class AdvertisingIdProvider;
class UuidSource;
class LogSink;

struct Services {
  HttpClient* http = nullptr;
  MainQueue* mainQueue = nullptr;
  Clock* clock = nullptr;
  DeviceInfo* device = nullptr;
  BundleInfo* bundle = nullptr;
  AdvertisingIdProvider* advertisingId = nullptr;
  UuidSource* uuids = nullptr;
  LogSink* log = nullptr;
};

// The services in force: the installed override if any, else the linked backend's default.
// Thread-safe.
const Services& services();

// Defined by the linked backend; lives for the whole process.
const Services& defaultServices();

// Installs `installed` for the lifetime of this object (tests only). Not nestable across
// threads; the previous set is restored on destruction.
class ScopedServices {
 public:
  explicit ScopedServices(const Services& installed);
  ~ScopedServices();
  ScopedServices(const ScopedServices&) = delete;
  ScopedServices& operator=(const ScopedServices&) = delete;

 private:
  const Services* previous_;
};

}  // namespace vemba::platform
