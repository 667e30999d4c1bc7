// The one run-time switch of the platform services, for tests and the tools that drive the fake
// backend; production code never includes this header.
#pragma once

#include "platform/Services.h"

namespace vemba::platform {

// Installs `installed` for the lifetime of this object. Not nestable across threads; the previous
// set is restored on destruction. Owner: the test that makes it, on its own thread.
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
