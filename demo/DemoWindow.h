// The demo host application's window: the ad unit and the load and show buttons of both ad
// formats, the checkout controls, and the event log. It is an ordinary Linux host of the library:
// it owns its ads and delegates, shows from its own window and dismisses a finished checkout
// itself. Main thread only; lives as long as the application's window.
#pragma once

#include <gtk/gtk.h>

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "EventLog.h"
#include "vemba/ScreenHandle.h"
#include "vemba/Url.h"

namespace vemba {
class VembaInterstitialAd;
class VembaRewardedAd;
namespace checkout {
class CheckoutViewController;
class CheckoutDelegate;
}  // namespace checkout
namespace platform {
class Screen;
}
}  // namespace vemba

namespace vemba::demo {

class DemoWindow {
 public:
  struct Settings {
    std::string exchangeOrigin;  // "https://127.0.0.1:18443"
    std::string adUnit = "demo-unit";
    bool echoLog = false;  // also print the log to standard output
  };

  // Builds the window inside `app` and shows it.
  DemoWindow(GtkApplication* app, Settings settings);
  ~DemoWindow();
  DemoWindow(const DemoWindow&) = delete;
  DemoWindow& operator=(const DemoWindow&) = delete;

  GtkWindow* window() const { return window_; }
  EventLog& log() { return log_; }
  const Settings& settings() const { return settings_; }

  // What the buttons do, also driven by the scripted session.
  void loadInterstitial();
  void showInterstitial();
  void loadRewarded();
  void showRewarded();
  void preloadCheckout();
  void presentCheckout();
  void invalidateCheckout();
  void setCheckoutUrl(const std::string& url);
  void setAdUnit(const std::string& adUnit);
  void setConfetti(bool enabled);
  void setPreloading(bool enabled);
  // Fills the Privacy section as a person would: GDPR on or off and a TCF consent string.
  void setGdprConsent(bool applies, const std::string& consent);

  // Called with a short key for every event the log shows ("interstitial.adDidLoad",
  // "checkout.checkoutDidComplete", "opened", ...), after it was logged.
  void setEventListener(std::function<void(std::string_view key)> listener) {
    listener_ = std::move(listener);
  }
  // Records one event: logs it and tells the listener. Public for the delegates.
  void event(std::string_view source, std::string_view name, std::string_view detail = {});
  // Refreshes the show buttons from the ads' readiness.
  void updateButtons();

  // The checkout sheet currently presented by this window, if any.
  std::shared_ptr<checkout::CheckoutViewController> checkoutSheet() const { return sheet_; }
  // Dismisses the presented sheet (the host's part after completion or cancellation).
  void dismissCheckout();
  // Dismisses whatever the shown ad presents over itself (a checkout opened from the ad).
  void dismissScreenOverAd();
  // While the interstitial is shown: records "demo.sheet over the ad loaded" once a sheet over it
  // has loaded its page.
  void watchScreenOverAd();

 private:
  struct Delegates;
  GtkWidget* buildAdsPanel();
  GtkWidget* buildPrivacyPanel();
  GtkWidget* buildCheckoutPanel();
  // Sets the SDK's privacy signals from the Privacy section (an off switch or an empty field is a
  // signal left unset).
  void applyPrivacy();
  void applyConfetti(bool enabled);
  void applyPreloading(bool enabled);
  std::shared_ptr<ScreenHandle> screen() const;
  std::string adUnit() const;
  std::string checkoutUrl() const;

  Settings settings_;
  GtkWindow* window_ = nullptr;
  EventLog log_;
  GtkWidget* adUnitEntry_ = nullptr;
  GtkWidget* showInterstitialButton_ = nullptr;
  GtkWidget* showRewardedButton_ = nullptr;
  GtkWidget* rewardLabel_ = nullptr;
  GtkWidget* revenueLabel_ = nullptr;
  GtkWidget* checkoutUrlEntry_ = nullptr;
  GtkWidget* confettiSwitch_ = nullptr;
  GtkWidget* preloadSwitch_ = nullptr;
  GtkWidget* gdprSwitch_ = nullptr;
  GtkWidget* coppaSwitch_ = nullptr;
  GtkWidget* lmtSwitch_ = nullptr;
  GtkWidget* tcfEntry_ = nullptr;
  GtkWidget* usPrivacyEntry_ = nullptr;
  GtkWidget* gppEntry_ = nullptr;
  GtkWidget* gppSectionsEntry_ = nullptr;
  int rewards_ = 0;
  std::map<std::string, std::int64_t> revenueMicros_;  // per currency, over every impression
  std::shared_ptr<VembaInterstitialAd> interstitial_;
  std::shared_ptr<VembaRewardedAd> rewarded_;
  std::shared_ptr<Delegates> delegates_;
  std::shared_ptr<checkout::CheckoutViewController> sheet_;
  std::function<void(std::string_view)> listener_;

  friend struct Delegates;
};

}  // namespace vemba::demo
