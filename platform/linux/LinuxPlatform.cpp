// The services of the Linux backend, chosen at link time.
#include "CurlHttpClient.h"
#include "GlibLogSink.h"
#include "GlibMainQueue.h"
#include "LinuxDevice.h"
#include "LinuxUi.h"
#include "platform/Services.h"
#include "ui/GtkApplication.h"
#include "ui/GtkUi.h"

namespace vemba::linux_platform {
namespace {

// Lives for the process: created on first use, destroyed at exit. Members are destroyed in
// reverse order, so the HTTP worker is stopped and joined while the main queue its completions
// post to still exists.
struct LinuxServices {
  GlibMainQueue mainQueue;
  SystemClock clock;
  LinuxDevice device;
  RandomUuidSource uuids;
  GlibLogSink log;
  CurlHttpClient http;
  platform::Services services;

  LinuxServices() {
    services.http = &http;
    services.mainQueue = &mainQueue;
    services.clock = &clock;
    services.device = &device;
    services.bundle = &device;
    services.advertisingId = &device;
    services.uuids = &uuids;
    services.log = &log;
    // GTK is initialised on the first call, on the main thread, so a process that never shows
    // anything never connects to a display.
    services.ui = [] { return linuxUi(); };
    services.application = [] { return gtkApplication(); };
    services.uiStarted = [] { return gtkStarted(); };
  }
};

}  // namespace
}  // namespace vemba::linux_platform

namespace vemba::platform {

const Services& defaultServices() {
  static linux_platform::LinuxServices instance;
  return instance.services;
}

}  // namespace vemba::platform
