// The resident memory of this process, read from /proc/self/status (VmRSS). Linux only; any
// thread.
#pragma once

#include <cstdint>
#include <fstream>
#include <string>

namespace vemba::soak {

// Kibibytes resident right now; 0 when /proc cannot be read.
inline std::uint64_t residentKib() {
  std::ifstream status("/proc/self/status");
  std::string key;
  while (status >> key) {
    if (key == "VmRSS:") {
      std::uint64_t kib = 0;
      status >> kib;
      return kib;
    }
    status.ignore(1 << 16, '\n');
  }
  return 0;
}

inline double mib(std::uint64_t kib) {
  return static_cast<double>(kib) / 1024.0;
}

}  // namespace vemba::soak
