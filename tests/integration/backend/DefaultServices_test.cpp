// The services the Linux backend links in.
#include <gtest/gtest.h>

#include "platform/DeviceInfo.h"
#include "platform/MainQueue.h"
#include "platform/Services.h"

namespace vemba::platform {
namespace {

TEST(LinuxDefaultServicesTest, EveryServiceIsProvidedAndStable) {
  const Services& services = defaultServices();
  EXPECT_NE(services.http, nullptr);
  EXPECT_NE(services.mainQueue, nullptr);
  EXPECT_NE(services.clock, nullptr);
  EXPECT_NE(services.device, nullptr);
  EXPECT_NE(services.bundle, nullptr);
  EXPECT_NE(services.advertisingId, nullptr);
  EXPECT_NE(services.uuids, nullptr);
  EXPECT_NE(services.log, nullptr);
  EXPECT_EQ(&defaultServices(), &services);
  EXPECT_EQ(&platform::services(), &services);
  EXPECT_EQ(services.device->model(), "Linux");
  EXPECT_NE(services.uuids->randomUuid(), services.uuids->randomUuid());
  EXPECT_TRUE(services.mainQueue->isMainThread());
}

}  // namespace
}  // namespace vemba::platform
