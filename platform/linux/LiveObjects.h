// How many of the backend's web views and screens exist right now, for leak checks in the
// integration tests and benchmarks. Internal to the Linux backend and its tools; hosts never see
// it. Main thread only, like the objects it counts.
#pragma once

#include <cstddef>

namespace vemba::linux_platform {

// A member of each counted object: counts itself up when the object is made and down when it is
// destroyed. `Tag` is the counted class.
template <typename Tag>
class LiveCounter {
 public:
  LiveCounter() noexcept { ++count_; }
  LiveCounter(const LiveCounter& /*other*/) noexcept { ++count_; }
  LiveCounter& operator=(const LiveCounter& /*other*/) noexcept = default;
  ~LiveCounter() { --count_; }

  static std::size_t live() noexcept { return count_; }

 private:
  static inline std::size_t count_ = 0;
};

// GtkWebView objects alive (each one holds a WebKitWebView and its web process).
std::size_t liveWebViewCount();
// GtkScreen objects alive, the screens of host windows included.
std::size_t liveScreenCount();
// The CSS class names made so far for widgets styled alone (ui/GtkCss.h): names are reused, so
// this stays at the most widgets styled at one time, however many come and go. Defined in
// ui/GtkCss.cpp.
std::size_t cssClassNamesMade();

}  // namespace vemba::linux_platform
