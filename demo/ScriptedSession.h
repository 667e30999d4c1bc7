// The demo's scripted mode: plays whole sessions on the demo window without a person (loading
// and showing both ad formats, a checkout opened from an ad, a preloaded checkout completed with
// confetti, a failing checkout that recovers) and saves a numbered PNG of the window at each step.
// The ad pages and the checkout play their part through the local exchange's scenario
// parameters, as a person's clicks would. Main thread only; owned by main() for the run.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "DemoWindow.h"

namespace vemba::demo {

class ScriptedSession {
 public:
  // Sets an ad unit's bid behaviour at the exchange ({"page": "interstitial.html?auto=..."}).
  using BidPage = std::function<void(const std::string& adUnit, const std::string& page)>;

  // The script names: "all" plays every one in turn.
  static const std::vector<std::string>& names();

  ScriptedSession(DemoWindow& window, std::string name, std::string screenshotDir, BidPage bidPage,
                  std::function<void(int status)> finished);
  ScriptedSession(const ScriptedSession&) = delete;
  ScriptedSession& operator=(const ScriptedSession&) = delete;

  void start();

 private:
  struct Step {
    std::string label;  // printed as the step starts
    std::function<void()> action;
    std::string waitFor;   // an event key to wait for after the action (may be empty)
    double seconds = 0;    // then a pause
    std::string snapshot;  // then a PNG, named after this
  };

  void addInterstitial();
  void addRewarded();
  void addCheckoutFromAd();
  void addPreloadedCheckout();
  void addRecovery();
  void next();
  void onEvent(std::string_view key);
  void proceed();
  void fail(const std::string& why);
  void takeSnapshot(const std::string& name);

  DemoWindow& window_;
  std::string name_;
  std::string screenshotDir_;
  BidPage bidPage_;
  std::function<void(int)> finished_;
  std::vector<Step> steps_;
  std::size_t current_ = 0;
  std::string waiting_;
  unsigned waitTimer_ = 0;
  int snapshots_ = 0;
  std::vector<std::string> seen_;  // events not yet taken by a wait, oldest first
};

}  // namespace vemba::demo
