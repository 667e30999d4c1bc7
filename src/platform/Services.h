// The set of platform services the core runs on, chosen at link time.
//
// Every binary links exactly one backend library (platform/linux or platform/fake), which
// defines defaultServices(). Tests may install another set for their duration with
// ScopedServices (ScopedServices.h, test-only); production code never switches at run time.
#pragma once

#include <functional>

namespace vemba::platform {

class HttpClient;
class MainQueue;
class Clock;
class DeviceInfo;
class BundleInfo;
class AdvertisingIdProvider;
class UuidSource;
class LogSink;
class Ui;
class Application;

struct Services {
  HttpClient* http = nullptr;
  MainQueue* mainQueue = nullptr;
  Clock* clock = nullptr;
  DeviceInfo* device = nullptr;
  BundleInfo* bundle = nullptr;
  AdvertisingIdProvider* advertisingId = nullptr;
  UuidSource* uuids = nullptr;
  LogSink* log = nullptr;
  // The user interface and the host application, reached through ui() and application() below.
  // Called on the main thread only; the first call may connect to the display.
  std::function<Ui*()> ui;
  std::function<Application*()> application;
  // Whether the user interface is up already (the host or an earlier ui() started it), so that
  // ui() would not connect to a display. Absent: never.
  std::function<bool()> uiStarted;
};

// The services in force: the installed override if any, else the linked backend's default.
// Thread-safe.
const Services& services();

// The platform's user interface and host application; null when the platform has none (a
// Linux process without a display): the core then shows nothing. Main thread only.
Ui* ui();
Application* application();
// ui() when the user interface is up already, else null without starting it: for work that is
// only worth doing in a process that shows things anyway. Main thread only.
Ui* uiIfStarted();

// Defined by the linked backend; lives for the whole process.
const Services& defaultServices();

}  // namespace vemba::platform
