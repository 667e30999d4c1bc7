// The inspector's host application on the Linux backend: one window to present from, an opener
// that prints instead of launching, web views that keep nothing, and window snapshots. Main
// thread only; one host per process.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "vemba/ScreenHandle.h"
#include "vemba/Url.h"

namespace vemba::inspect {

// How often a command looks at what the host window presents.
inline constexpr double kWatchIntervalSeconds = 0.05;
// After a page has loaded, a moment for it to be drawn before a snapshot shows it.
inline constexpr double kSnapshotSettleSeconds = 0.5;

class InspectHost {
 public:
  // Connects to the display and opens the host window; absent (after printing why to standard
  // error) when there is no display.
  static std::unique_ptr<InspectHost> open(const std::string& title);
  ~InspectHost();
  InspectHost(const InspectHost&) = delete;
  InspectHost& operator=(const InspectHost&) = delete;

  // The window's root screen, to present from.
  std::shared_ptr<ScreenHandle> screen() const;
  // Saves a PNG of the window; false (after printing why) when it cannot.
  bool snapshot(const std::string& path) const;
  // Runs the main loop until quit() (or `seconds` pass: then false).
  bool run(double seconds);
  void quit();
  // Runs `work` once after `seconds` on the main loop, or every `seconds` while it returns true.
  void after(double seconds, std::function<void()> work);
  void every(double seconds, std::function<bool()> work);

 private:
  struct State;
  explicit InspectHost(std::unique_ptr<State> state);
  std::unique_ptr<State> state_;
};

// Prints {"opened": URL} for every URL the library hands to the application.
void printOpenedUrls();

}  // namespace vemba::inspect
