#include "ScriptedSession.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>

#include "Inspection.h"

namespace vemba::demo {
namespace {

// The longest a step waits for the event it expects before the session fails.
constexpr guint kWaitTimeoutSeconds = 40;

constexpr const char* kInterstitial = "interstitial";
constexpr const char* kRewarded = "rewarded";
constexpr const char* kCheckoutFromAd = "checkout-from-ad";
constexpr const char* kCheckout = "checkout";
constexpr const char* kRecovery = "recovery";

guint millis(double seconds) {
  return static_cast<guint>(seconds * 1000);
}

}  // namespace

const std::vector<std::string>& ScriptedSession::names() {
  static const std::vector<std::string> all = {"all",           kInterstitial, kRewarded,
                                               kCheckoutFromAd, kCheckout,     kRecovery};
  return all;
}

ScriptedSession::ScriptedSession(DemoWindow& window, std::string name, std::string screenshotDir,
                                 BidPage bidPage, std::function<void(int status)> finished)
    : window_(window),
      name_(std::move(name)),
      screenshotDir_(std::move(screenshotDir)),
      bidPage_(std::move(bidPage)),
      finished_(std::move(finished)) {
  const bool all = name_ == "all";
  if (all || name_ == kInterstitial) {
    addInterstitial();
  }
  if (all || name_ == kRewarded) {
    addRewarded();
  }
  if (all || name_ == kCheckoutFromAd) {
    addCheckoutFromAd();
  }
  if (all || name_ == kCheckout) {
    addPreloadedCheckout();
  }
  if (all || name_ == kRecovery) {
    addRecovery();
  }
}

void ScriptedSession::addInterstitial() {
  const std::string unit = "script-interstitial";
  steps_.push_back(
      {"Load an interstitial with GDPR consent (its page clicks through, then "
       "closes itself)",
       [this, unit] {
         window_.setGdprConsent(true, "CPxLumenmossDemo");
         bidPage_(unit, "interstitial.html?auto=clickthrough,close&autoDelay=2500");
         window_.setAdUnit(unit);
         window_.loadInterstitial();
       },
       "interstitial.adDidLoad", 0.3, "interstitial-ready"});
  steps_.push_back({"Show it full-screen", [this] { window_.showInterstitial(); },
                    "interstitial.adDidShow", 1.5, "interstitial-shown"});
  steps_.push_back({"Its impression earns the bid's price as a CPM", nullptr,
                    "interstitial.adDidRecordImpression", 0, ""});
  steps_.push_back({"The page reports a click", nullptr, "interstitial.adDidClick", 0, ""});
  steps_.push_back({"Its link is handed to the opener", nullptr, "app.opened", 0, ""});
  steps_.push_back({"The page closes the ad", nullptr, "interstitial.adDidDismiss", 0.5,
                    "interstitial-dismissed"});
}

void ScriptedSession::addRewarded() {
  const std::string unit = "script-rewarded";
  steps_.push_back({"Load a rewarded ad (a three-second countdown, then it closes itself)",
                    [this, unit] {
                      bidPage_(unit, "rewarded.html?seconds=3&autoClose=1");
                      window_.setAdUnit(unit);
                      window_.loadRewarded();
                    },
                    "rewarded.adDidLoad", 0, ""});
  steps_.push_back({"Show it", [this] { window_.showRewarded(); }, "rewarded.adDidShow", 1.2,
                    "rewarded-countdown"});
  steps_.push_back(
      {"The reward arrives before the dismissal", nullptr, "rewarded.adDidEarnReward", 0, ""});
  steps_.push_back(
      {"The ad is dismissed", nullptr, "rewarded.adDidDismiss", 0.5, "rewarded-earned"});
}

void ScriptedSession::addCheckoutFromAd() {
  const std::string unit = "script-shop";
  // The page presses "Shop this" two seconds after it loads and "Close ad" six seconds later
  // (the words in between are messages the library ignores).
  steps_.push_back(
      {"Load an ad whose page opens a checkout ('Shop this'), then closes",
       [this, unit] {
         bidPage_(unit, "interstitial.html?auto=openCheckout,wait,wait,close&autoDelay=2000");
         window_.setAdUnit(unit);
         window_.loadInterstitial();
       },
       "interstitial.adDidLoad", 0, ""});
  steps_.push_back({"Show it", [this] { window_.showInterstitial(); }, "interstitial.adDidShow",
                    1.5, "ad-before-checkout"});
  steps_.push_back({"The checkout sheet opens over the ad and loads its page", nullptr,
                    "demo.sheet over the ad loaded", 0.8, "checkout-over-ad"});
  steps_.push_back({"The host dismisses the sheet; the ad is still there",
                    [this] { window_.dismissScreenOverAd(); }, "", 0.8, "ad-after-checkout"});
  steps_.push_back(
      {"The page closes the ad", nullptr, "interstitial.adDidDismiss", 0.5, "ad-dismissed"});
}

void ScriptedSession::addPreloadedCheckout() {
  steps_.push_back({"Preload a checkout (confetti on)",
                    [this] {
                      window_.setConfetti(true);
                      window_.setCheckoutUrl(window_.settings().exchangeOrigin +
                                             "/checkout/demo?auto=pay&autoDelay=1500");
                      window_.preloadCheckout();
                    },
                    "", 2.5, ""});
  steps_.push_back({"Present it: the preloaded page appears at once",
                    [this] { window_.presentCheckout(); }, "checkout.checkoutDidEmitWebPixelEvent",
                    0.8, "checkout-presented"});
  steps_.push_back({"The page pays and completes", nullptr, "checkout.checkoutDidComplete", 0.7,
                    "checkout-confetti"});
  steps_.push_back(
      {"The host dismisses the sheet", nullptr, "checkout.dismissed", 0.3, "checkout-dismissed"});
}

void ScriptedSession::addRecovery() {
  steps_.push_back({"Present a checkout whose first load fails with HTTP 500",
                    [this] {
                      window_.setCheckoutUrl(window_.settings().exchangeOrigin +
                                             "/checkout/fail-once/demo-" +
                                             std::to_string(getpid()) + "?auto=pay&autoDelay=2500");
                      window_.presentCheckout();
                    },
                    "checkout.checkoutDidFail", 1.5, "recovery-view"});
  steps_.push_back({"The recovery page completes through the thank-you page", nullptr,
                    "checkout.checkoutDidComplete", 0.5, "recovery-completed"});
  steps_.push_back({"The host dismisses the sheet", nullptr, "checkout.dismissed", 0, ""});
}

void ScriptedSession::start() {
  window_.setEventListener([this](std::string_view key) { onEvent(key); });
  std::printf("Scripted session '%s': %zu steps; screenshots in %s\n", name_.c_str(), steps_.size(),
              screenshotDir_.c_str());
  std::fflush(stdout);
  current_ = 0;
  // Let the window draw once before the first step.
  g_timeout_add_once(
      500, [](gpointer self) { static_cast<ScriptedSession*>(self)->next(); }, this);
}

void ScriptedSession::next() {
  if (current_ >= steps_.size()) {
    window_.setEventListener(nullptr);
    std::printf("Scripted session '%s' finished: %d screenshots in %s\n", name_.c_str(), snapshots_,
                screenshotDir_.c_str());
    std::fflush(stdout);
    finished_(0);
    return;
  }
  const Step& step = steps_[current_];
  std::printf("---- step %zu/%zu: %s\n", current_ + 1, steps_.size(), step.label.c_str());
  std::fflush(stdout);
  if (step.action) {
    step.action();
  }
  waiting_ = step.waitFor;
  if (!waiting_.empty()) {
    // The event may have arrived already (during the action or an earlier pause): take it, and
    // everything before it, off the record.
    const auto seen = std::find(seen_.begin(), seen_.end(), waiting_);
    if (seen == seen_.end()) {
      waitTimer_ = g_timeout_add_once(
          kWaitTimeoutSeconds * 1000,
          [](gpointer self) {
            auto* session = static_cast<ScriptedSession*>(self);
            session->waitTimer_ = 0;
            session->fail("no '" + session->waiting_ + "' within the time limit");
          },
          this);
      return;
    }
    seen_.erase(seen_.begin(), seen + 1);
  }
  proceed();
}

void ScriptedSession::onEvent(std::string_view key) {
  if (waiting_.empty() || key != waiting_) {
    seen_.emplace_back(key);
    return;
  }
  if (waitTimer_ != 0) {
    g_source_remove(waitTimer_);
    waitTimer_ = 0;
  }
  proceed();
}

void ScriptedSession::proceed() {
  waiting_.clear();
  const Step& step = steps_[current_];
  g_timeout_add_once(
      millis(step.seconds),
      [](gpointer self) {
        auto* session = static_cast<ScriptedSession*>(self);
        const Step& done = session->steps_[session->current_];
        if (!done.snapshot.empty()) {
          session->takeSnapshot(done.snapshot);
        }
        ++session->current_;
        session->next();
      },
      this);
}

void ScriptedSession::takeSnapshot(const std::string& name) {
  char file[64];
  std::snprintf(file, sizeof file, "%02d-%s.png", ++snapshots_, name.c_str());
  const std::string path = screenshotDir_ + "/" + file;
  if (inspection::saveWindowPng(window_.window(), path)) {
    window_.log().add("demo", "screenshot " + path);
  } else {
    fail("could not save " + path);
  }
}

void ScriptedSession::fail(const std::string& why) {
  std::fprintf(stderr, "Scripted session '%s' failed at step %zu: %s\n", name_.c_str(),
               current_ + 1, why.c_str());
  window_.setEventListener(nullptr);
  finished_(1);
}

}  // namespace vemba::demo
