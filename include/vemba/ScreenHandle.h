// A screen something can be presented from: the root of a host window, or a screen the library
// presented over it. Hosts get screens from the platform's entry points (on Linux,
// vemba/linux/Screens.h) and hand them back to show() and present(); they never make one. A
// screen of any other origin is treated as no screen at all.
//
// Contract: main thread only. Shared ownership; holding a screen keeps the object alive, not its
// window or its presentation.
#pragma once

#include "vemba/Export.h"

namespace vemba {

class VEMBA_EXPORT ScreenHandle {
 public:
  virtual ~ScreenHandle() = default;
  ScreenHandle(const ScreenHandle&) = delete;
  ScreenHandle& operator=(const ScreenHandle&) = delete;

 protected:
  ScreenHandle() = default;
};

}  // namespace vemba
