// The load soak: many ad loads of both formats against the local exchange, a bounded number in
// flight, each answered with one fault of LoadFaults.h in turn, and some ads released by the host
// while their request is in flight. It checks that every kept ad hears exactly one callback of the
// expected class, that a released ad hears nothing, that every callback runs on the main thread,
// and it samples the resident memory at checkpoints, the first after a fifth of the loads (in
// flight drained first, so the samples compare like with like).
//
// Runs on the main thread, driving GLib's default main context itself; the SDK is initialised and
// the exchange of the build's origin is up before run(). Owned by the caller for one run.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace vemba::soak {

struct LoadSoakOptions {
  std::size_t loads = 5000;
  std::size_t maxInFlight = 200;
  std::size_t releaseEvery = 5;  // every fifth ad is released in flight
  std::size_t checkpoints = 5;   // the first memory sample comes after loads / checkpoints
};

struct LoadSoakReport {
  struct PerFault {
    std::string name;
    std::string expected;
    std::size_t kept = 0;
    std::size_t released = 0;
    std::size_t right = 0;  // kept ads that heard exactly one callback of the expected class
  };
  struct Checkpoint {
    std::size_t loads = 0;
    std::uint64_t residentKib = 0;  // as found
    // The lowest reading after malloc_trim(0) over two seconds: without the free pages the
    // allocators keep (from bodies of up to 16 MiB in flight together, and WebKit's until its
    // scavenger runs), which otherwise swing the samples by tens of MiB.
    std::uint64_t trimmedKib = 0;
    std::uint64_t heapInUseKib = 0;  // what malloc has handed out and not had back
  };
  std::vector<PerFault> faults;
  std::vector<Checkpoint> memory;
  std::size_t interstitials = 0;
  std::size_t rewardeds = 0;
  std::size_t kept = 0;
  std::size_t released = 0;
  std::size_t lost = 0;               // kept ads that heard nothing
  std::size_t doubled = 0;            // kept ads that heard more than one callback
  std::size_t wrongClass = 0;         // kept ads whose one callback was of another class
  std::size_t heardWhenReleased = 0;  // callbacks to ads released in flight
  std::size_t offMainThread = 0;      // callbacks on another thread than the main one
  std::size_t stray = 0;              // show, dismiss, click or reward callbacks to ads never shown
  std::size_t releasedLate = 0;       // released after a main-loop stall: counted neither way
  std::size_t peakInFlight = 0;
  double longestStallMs = 0;           // the longest the main loop went without turning
  std::size_t longestStallAtLoad = 0;  // how many loads had started by then
  double seconds = 0;
  std::vector<std::string> examples;  // the first few failures, as text

  std::size_t failures() const {
    return lost + doubled + wrongClass + heardWhenReleased + offMainThread + stray;
  }
};

LoadSoakReport runLoadSoak(const LoadSoakOptions& options);

}  // namespace vemba::soak
