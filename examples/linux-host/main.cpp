// The smallest Linux host of both halves: the README's integration, compiled and run as it
// stands, against the installed library alone. It shows an interstitial as soon as one has
// loaded, then a rewarded ad when the interstitial is closed, grants the reward when the library
// hands it out, then presents a checkout when the rewarded ad has been dismissed, and quits when
// the checkout completes, is cancelled or fails.
//
//   vemba-minimal-host [AD_UNIT [CHECKOUT_URL]]
//
// The library talks to the exchange origin it was built for (127.0.0.1:18443 in every preset);
// start the local exchange first and point SSL_CERT_FILE at its certificate authority.
#include <gtk/gtk.h>

#include <cstdio>
#include <memory>
#include <optional>
#include <string>

#include "vemba/Vemba.h"
#include "vemba/checkout/Checkout.h"
#include "vemba/linux/Screens.h"

namespace {

// --- the integration (README) ------------------------------------------------------------------
struct Host : vemba::VembaInterstitialAdDelegate,
              vemba::VembaRewardedAdDelegate,
              vemba::checkout::CheckoutDelegate,
              std::enable_shared_from_this<Host> {
  GtkWindow* window = nullptr;
  std::shared_ptr<vemba::VembaInterstitialAd> interstitial;
  std::shared_ptr<vemba::VembaRewardedAd> rewarded;
  std::string checkoutUrl;

  void adDidLoad(vemba::VembaInterstitialAd& ad) override {
    ad.show(vemba::topScreenForWindow(window));
  }
  void adDidDismiss(vemba::VembaInterstitialAd&) override { rewarded->load(); }
  void adDidLoad(vemba::VembaRewardedAd& ad) override {
    ad.show(vemba::topScreenForWindow(window));
  }
  void adDidEarnReward(vemba::VembaRewardedAd&, const vemba::VembaReward& reward) override {
    std::printf("granted %lld %s\n", static_cast<long long>(reward.amount()),
                reward.type().c_str());
  }
  // --- end of the integration; the rest only reports what happened --------------------------
  void adDidFailToLoad(vemba::VembaInterstitialAd&, const vemba::Error& error) override {
    std::printf("interstitial failed: %s\n", error.description.c_str());
  }
  void adDidShow(vemba::VembaInterstitialAd&) override { std::puts("interstitial shown"); }
  void adDidClick(vemba::VembaInterstitialAd&) override { std::puts("interstitial clicked"); }
  void adDidFailToLoad(vemba::VembaRewardedAd&, const vemba::Error& error) override {
    std::printf("rewarded failed: %s\n", error.description.c_str());
  }
  void adDidShow(vemba::VembaRewardedAd&) override { std::puts("rewarded shown"); }
  void adDidClick(vemba::VembaRewardedAd&) override { std::puts("rewarded clicked"); }
  void adDidDismiss(vemba::VembaRewardedAd&) override {
    std::puts("rewarded dismissed");
    presentCheckout();
  }

  void presentCheckout() {
    const std::optional<vemba::Url> url = vemba::Url::parse(checkoutUrl);
    if (!url ||
        !vemba::checkout::present(*url, vemba::topScreenForWindow(window), shared_from_this())) {
      std::printf("checkout not presented: %s\n", checkoutUrl.c_str());
      quit();
    }
  }
  void checkoutDidComplete(const vemba::checkout::CheckoutCompletedEvent& event) override {
    std::printf("checkout completed: order %s\n", event.orderDetails.id.c_str());
    quit();
  }
  void checkoutDidCancel() override {
    std::puts("checkout cancelled");
    quit();
  }
  void checkoutDidFail(const vemba::checkout::CheckoutError& error) override {
    std::printf("checkout failed: %s\n", error.toError().description.c_str());
    if (!error.isRecoverable()) {
      quit();
    }
  }
  static void quit() { g_application_quit(g_application_get_default()); }
};

void activate(GtkApplication* app, gpointer data) {
  auto& host = *static_cast<std::shared_ptr<Host>*>(data);
  host->window = GTK_WINDOW(gtk_application_window_new(app));
  gtk_window_set_default_size(host->window, 900, 640);
  gtk_window_present(host->window);
  // --- the integration (README), continued ------------------------------------------------------
  vemba::VembaSDK::shared().initialize(vemba::VembaConfiguration("demo-api-key", false));
  host->interstitial->setDelegate(host);  // ads hold their delegate weakly
  host->rewarded->setDelegate(host);
  host->interstitial->load();
}

}  // namespace

int main(int argc, char** argv) {
  std::setvbuf(stdout, nullptr, _IOLBF, 0);
  const std::string adUnit = argc > 1 ? argv[1] : "minimal-host";
  auto host = std::make_shared<Host>();
  host->checkoutUrl = argc > 2 ? argv[2] : "https://127.0.0.1:18443/checkout/demo?auto=pay";
  host->interstitial = vemba::VembaInterstitialAd::create(adUnit);
  host->rewarded = vemba::VembaRewardedAd::create(adUnit);
  GtkApplication* app = gtk_application_new("dev.vemba.MinimalHost", G_APPLICATION_NON_UNIQUE);
  g_signal_connect(app, "activate", G_CALLBACK(activate), &host);
  const int status = g_application_run(G_APPLICATION(app), 1, argv);
  g_object_unref(app);
  return status;
}
