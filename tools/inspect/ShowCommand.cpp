// vemba-inspect show: loads an ad and shows it from a host window when it has loaded, as a host
// would, printing one JSON line per host callback, per URL the ad opens outside the application,
// and per appearance and departure of a checkout sheet over the ad.

#include <cstdio>
#include <memory>
#include <optional>
#include <set>
#include <string>

#include "AdOptions.h"
#include "Commands.h"
#include "InspectHost.h"
#include "Inspection.h"
#include "Options.h"
#include "vemba/Vemba.h"

namespace vemba::inspect {
namespace {

constexpr double kDefaultTimeoutSeconds = 60;

struct ShowOptions {
  AdOptions ad;
  std::optional<std::string> apiKey;
  std::optional<double> closeAfter;
  double timeout = kDefaultTimeoutSeconds;
  std::optional<std::string> screenshot;
  bool showTwice = false;  // a second show() right after the first, from the same window
  bool muted = false;
};

// One inspected ad: the host window, the ad, and what has been seen of its screens.
struct ShowSession {
  explicit ShowSession(ShowOptions chosen) : options(std::move(chosen)) {}

  ShowOptions options;
  std::unique_ptr<InspectHost> host;
  std::shared_ptr<void> ad;
  std::function<void()> show;  // shows the ad from the host window
  bool checkoutShown = false;
  bool snapshotTaken = false;

  // The ad's screen: what the host window presents.
  std::shared_ptr<ScreenHandle> adScreen() const {
    return inspection::presentedOver(host->screen());
  }

  void print(const char* callback) { printLine(Line{{"callback", callback}}); }
  void finish() { host->quit(); }

  void didShow() {
    print("adDidShow");
    if (options.closeAfter) {
      // A real press of the close button, as a person's click delivers it.
      host->after(*options.closeAfter, [this] { inspection::pressCloseButton(adScreen()); });
    }
    host->every(kWatchIntervalSeconds, [this] { return watch(); });
  }

  // Prints a checkout sheet's arrival and departure over the ad, and takes the snapshot once the
  // ad page has loaded. True while the ad's screen is up.
  bool watch() {
    const std::shared_ptr<ScreenHandle> screen = adScreen();
    if (!screen) {
      return false;
    }
    const bool checkout = inspection::presentedOver(screen) != nullptr;
    if (checkout != checkoutShown) {
      checkoutShown = checkout;
      printLine(Line{{"screen", "checkout"}, {"state", checkout ? "presented" : "dismissed"}});
    }
    if (options.screenshot && !snapshotTaken) {
      if (inspection::pageLoaded(screen)) {
        snapshotTaken = true;
        host->after(kSnapshotSettleSeconds, [this] { host->snapshot(*options.screenshot); });
      }
    }
    return true;
  }

  using Line = nlohmann::ordered_json;
};

// Prints each callback of either format; shows the ad when it has loaded, ends the run after a
// failed load or a dismissal.
class ShowingDelegate final : public VembaInterstitialAdDelegate, public VembaRewardedAdDelegate {
 public:
  explicit ShowingDelegate(ShowSession& session) : s_(session) {}

  void adDidLoad(VembaInterstitialAd&) override { loaded(); }
  void adDidFailToLoad(VembaInterstitialAd&, const Error& error) override { failed(error); }
  void adDidShow(VembaInterstitialAd&) override { s_.didShow(); }
  void adDidDismiss(VembaInterstitialAd&) override { dismissed(); }
  void adDidClick(VembaInterstitialAd&) override { s_.print("adDidClick"); }
  void adDidFailToShow(VembaInterstitialAd&, const Error& error) override { notShown(error); }
  void adDidRecordImpression(VembaInterstitialAd&, const AdValue& value) override {
    impression(value);
  }

  void adDidLoad(VembaRewardedAd&) override { loaded(); }
  void adDidFailToLoad(VembaRewardedAd&, const Error& error) override { failed(error); }
  void adDidShow(VembaRewardedAd&) override { s_.didShow(); }
  void adDidDismiss(VembaRewardedAd&) override { dismissed(); }
  void adDidClick(VembaRewardedAd&) override { s_.print("adDidClick"); }
  void adDidFailToShow(VembaRewardedAd&, const Error& error) override { notShown(error); }
  void adDidRecordImpression(VembaRewardedAd&, const AdValue& value) override { impression(value); }
  void adDidEarnReward(VembaRewardedAd&, const VembaReward& reward) override {
    printLine(ShowSession::Line{
        {"callback", "adDidEarnReward"},
        {"reward", ShowSession::Line{{"amount", reward.amount()}, {"type", reward.type()}}}});
  }

 private:
  void loaded() {
    s_.print("adDidLoad");
    s_.show();
  }
  void failed(const Error& error) {
    printLine(ShowSession::Line{{"callback", "adDidFailToLoad"}, {"error", errorJson(error)}});
    s_.finish();
  }
  void notShown(const Error& error) {
    printLine(ShowSession::Line{{"callback", "adDidFailToShow"}, {"error", errorJson(error)}});
    if (s_.adScreen() == nullptr) {
      s_.finish();  // nothing is on screen that could still be dismissed
    }
  }
  void impression(const AdValue& value) {
    printLine(ShowSession::Line{{"callback", "adDidRecordImpression"},
                                {"value", ShowSession::Line{{"micros", value.valueMicros},
                                                            {"currency", value.currencyCode},
                                                            {"precision", value.precision}}}});
  }
  void dismissed() {
    s_.print("adDidDismiss");
    s_.finish();
  }

  ShowSession& s_;
};

std::optional<ShowOptions> readOptions(const Args& args) {
  std::set<std::string> valued = adOptionNames();
  valued.insert({"--api-key", "--close-after", "--timeout", "--screenshot"});
  const std::optional<Options> options = Options::parse(args, valued, {"--show-twice", "--muted"});
  if (!options) {
    return std::nullopt;
  }
  std::optional<AdOptions> ad = readAdOptions(*options);
  if (!ad) {
    return std::nullopt;
  }
  ShowOptions out;
  out.ad = *ad;
  bool ok = true;
  out.apiKey = options->value("--api-key");
  out.closeAfter = options->number("--close-after", ok);
  out.timeout = options->number("--timeout", ok).value_or(kDefaultTimeoutSeconds);
  out.screenshot = options->value("--screenshot");
  out.showTwice = options->flag("--show-twice");
  out.muted = options->flag("--muted");
  if (!timesFit(ok, out.timeout, {out.closeAfter.value_or(0)})) {
    return std::nullopt;
  }
  return out;
}

// Makes the ad of format `Ad`, kept by the session, and starts its load; the delegate shows it
// once it has loaded.
template <typename Ad, typename Delegate>
void start(ShowSession& session, const std::shared_ptr<ShowingDelegate>& delegate) {
  auto ad = Ad::create(session.options.ad.adUnitId);
  ad->setBidFloor(session.options.ad.bidFloor);
  ad->setDelegate(std::static_pointer_cast<Delegate>(delegate));
  session.show = [&session, weak = std::weak_ptr(ad)] {
    if (const auto alive = weak.lock()) {
      alive->show(session.host->screen());
      if (session.options.showTwice) {
        alive->show(session.host->screen());
      }
    }
  };
  session.ad = ad;
  ad->load();
}

}  // namespace

int runShow(const Args& args) {
  std::optional<ShowOptions> options = readOptions(args);
  if (!options) {
    return kExitUsage;
  }
  ShowSession session(*options);
  session.host = InspectHost::open("vemba-inspect show");
  if (!session.host) {
    return kExitNoDisplay;
  }
  printOpenedUrls();
  // The library's own log lines (load, retries, messages from the page) go to standard error.
  inspection::setAdLogSink([](std::string_view line) {
    std::fprintf(stderr, "%.*s\n", static_cast<int>(line.size()), line.data());
  });
  if (session.options.apiKey) {
    VembaSDK::shared().initialize(VembaConfiguration(*session.options.apiKey, false));
  }
  VembaSDK::shared().setPrivacy(session.options.ad.privacy);
  VembaSDK::shared().setApplicationMuted(session.options.muted);

  auto delegate = std::make_shared<ShowingDelegate>(session);
  if (session.options.ad.format == Format::interstitial) {
    start<VembaInterstitialAd, VembaInterstitialAdDelegate>(session, delegate);
  } else {
    start<VembaRewardedAd, VembaRewardedAdDelegate>(session, delegate);
  }
  if (!session.host->run(session.options.timeout)) {
    reportTimeout("the ad was not dismissed", session.options.timeout);
    return kExitTimeout;
  }
  return 0;
}

}  // namespace vemba::inspect
