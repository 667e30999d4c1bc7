// A delegate for both ad formats that records each call as one line, with the ad's readiness at
// the moment of the call and the thread it came on.
#pragma once

#include <functional>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "vemba/ads/VembaInterstitialAd.h"
#include "vemba/ads/VembaRewardedAd.h"

namespace vemba::tests {

class RecordingDelegate : public VembaInterstitialAdDelegate, public VembaRewardedAdDelegate {
 public:
  struct Call {
    std::string name;
    bool isReady = false;
    Error error;
    std::thread::id thread = std::this_thread::get_id();
  };
  std::vector<Call> calls;
  // The optional callbacks, kept apart so that the required ones read as they always did:
  // "failToShow:<code>", "impression:<micros>:<currency>:<precision>", "expire".
  std::vector<std::string> optionalCalls;
  std::function<void()> afterLoadOutcome;  // run after adDidLoad and adDidFailToLoad are recorded
  bool throws = false;                     // every call throws once it is recorded

  std::vector<std::string> names() const {
    std::vector<std::string> out;
    for (const Call& call : calls) {
      out.push_back(call.name);
    }
    return out;
  }

  void adDidLoad(VembaInterstitialAd& ad) override { loadOutcome("adDidLoad", ad.isReady()); }
  void adDidFailToLoad(VembaInterstitialAd& ad, const Error& error) override {
    loadOutcome("adDidFailToLoad", ad.isReady(), error);
  }
  void adDidShow(VembaInterstitialAd& ad) override { record("adDidShow", ad.isReady()); }
  void adDidDismiss(VembaInterstitialAd& ad) override { record("adDidDismiss", ad.isReady()); }
  void adDidClick(VembaInterstitialAd& ad) override { record("adDidClick", ad.isReady()); }

  void adDidLoad(VembaRewardedAd& ad) override { loadOutcome("adDidLoad", ad.isReady()); }
  void adDidFailToLoad(VembaRewardedAd& ad, const Error& error) override {
    loadOutcome("adDidFailToLoad", ad.isReady(), error);
  }
  void adDidShow(VembaRewardedAd& ad) override { record("adDidShow", ad.isReady()); }
  void adDidDismiss(VembaRewardedAd& ad) override { record("adDidDismiss", ad.isReady()); }
  void adDidClick(VembaRewardedAd& ad) override { record("adDidClick", ad.isReady()); }
  void adDidFailToShow(VembaInterstitialAd& /*ad*/, const Error& error) override {
    failToShow(error);
  }
  void adDidRecordImpression(VembaInterstitialAd& /*ad*/, const AdValue& value) override {
    impression(value);
  }
  void adDidExpire(VembaInterstitialAd& /*ad*/) override { optionalCalls.emplace_back("expire"); }
  void adDidFailToShow(VembaRewardedAd& /*ad*/, const Error& error) override { failToShow(error); }
  void adDidRecordImpression(VembaRewardedAd& /*ad*/, const AdValue& value) override {
    impression(value);
  }
  void adDidExpire(VembaRewardedAd& /*ad*/) override { optionalCalls.emplace_back("expire"); }
  // Recorded with the reward's values: "adDidEarnReward(1,reward)".
  void adDidEarnReward(VembaRewardedAd& ad, const VembaReward& reward) override {
    record("adDidEarnReward(" + std::to_string(reward.amount()) + "," + reward.type() + ")",
           ad.isReady());
  }

 private:
  void failToShow(const Error& error) {
    optionalCalls.push_back(error.domain == kVembaShowErrorDomain
                                ? "failToShow:" + std::to_string(error.code)
                                : "failToShow:" + error.domain);
  }
  void impression(const AdValue& value) {
    optionalCalls.push_back("impression:" + std::to_string(value.valueMicros) + ":" +
                            value.currencyCode + ":" + value.precision);
  }
  void record(std::string name, bool ready, Error error = {}) {
    calls.push_back(Call{name, ready, std::move(error)});
    if (throws) {
      throw std::runtime_error(name + " went wrong in the host");
    }
  }
  void loadOutcome(std::string name, bool ready, Error error = {}) {
    record(std::move(name), ready, std::move(error));
    if (afterLoadOutcome) {
      afterLoadOutcome();
    }
  }
};

}  // namespace vemba::tests
