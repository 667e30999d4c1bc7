// The ad half's subcommands: load, request and user-agent.
#include <glib.h>

#include <cstdio>
#include <memory>
#include <nlohmann/json.hpp>

#include "AdOptions.h"
#include "Commands.h"
#include "Inspection.h"
#include "Options.h"
#include "vemba/Vemba.h"

namespace vemba::inspect {
namespace {

constexpr double kDefaultTimeoutSeconds = 70;

// Prints each load callback as one JSON line and stops the loop at the first one.
class PrintingDelegate : public VembaInterstitialAdDelegate, public VembaRewardedAdDelegate {
 public:
  explicit PrintingDelegate(GMainLoop* loop) : loop_(loop) {}
  bool called = false;

  void adDidLoad(VembaInterstitialAd& ad) override { loaded(ad.adUnitId(), ad.isReady()); }
  void adDidFailToLoad(VembaInterstitialAd& ad, const Error& error) override {
    failed(ad.adUnitId(), ad.isReady(), error);
  }
  void adDidShow(VembaInterstitialAd&) override {}
  void adDidDismiss(VembaInterstitialAd&) override {}
  void adDidClick(VembaInterstitialAd&) override {}

  void adDidLoad(VembaRewardedAd& ad) override { loaded(ad.adUnitId(), ad.isReady()); }
  void adDidFailToLoad(VembaRewardedAd& ad, const Error& error) override {
    failed(ad.adUnitId(), ad.isReady(), error);
  }
  void adDidShow(VembaRewardedAd&) override {}
  void adDidDismiss(VembaRewardedAd&) override {}
  void adDidClick(VembaRewardedAd&) override {}
  void adDidEarnReward(VembaRewardedAd&, const VembaReward&) override {}

 private:
  void loaded(const std::string& unit, bool ready) {
    nlohmann::ordered_json line;
    line["callback"] = "adDidLoad";
    line["adUnitId"] = unit;
    line["isReady"] = ready;
    finish(line);
  }
  void failed(const std::string& unit, bool ready, const Error& error) {
    nlohmann::ordered_json line;
    line["callback"] = "adDidFailToLoad";
    line["adUnitId"] = unit;
    line["isReady"] = ready;
    line["error"] = errorJson(error);
    finish(line);
  }
  void finish(const nlohmann::ordered_json& line) {
    printLine(line);
    called = true;
    g_main_loop_quit(loop_);
  }
  GMainLoop* loop_;
};

}  // namespace

int runLoad(const Args& args) {
  std::set<std::string> valued = adOptionNames();
  valued.insert({"--api-key", "--timeout"});
  const std::optional<Options> options = Options::parse(args, valued, {"--no-initialize"});
  if (!options) {
    return kExitUsage;
  }
  const std::optional<AdOptions> ad = readAdOptions(*options);
  bool ok = true;
  const double timeout = options->number("--timeout", ok).value_or(kDefaultTimeoutSeconds);
  if (!ad || !ok || timeout <= 0) {
    return kExitUsage;
  }
  const std::optional<std::string> apiKey = options->value("--api-key");
  if (apiKey.has_value() == options->flag("--no-initialize")) {
    std::fputs("vemba-inspect: give either --api-key KEY or --no-initialize\n", stderr);
    return kExitUsage;
  }
  if (apiKey) {
    VembaSDK::shared().initialize(VembaConfiguration(*apiKey, false));
  }
  VembaSDK::shared().setPrivacy(ad->privacy);

  GMainLoop* loop = g_main_loop_new(nullptr, FALSE);
  auto delegate = std::make_shared<PrintingDelegate>(loop);
  std::shared_ptr<void> keepAlive;
  if (ad->format == Format::interstitial) {
    auto interstitial = VembaInterstitialAd::create(ad->adUnitId);
    interstitial->setBidFloor(ad->bidFloor);
    interstitial->setDelegate(std::static_pointer_cast<VembaInterstitialAdDelegate>(delegate));
    interstitial->load();
    keepAlive = interstitial;
  } else {
    auto rewarded = VembaRewardedAd::create(ad->adUnitId);
    rewarded->setBidFloor(ad->bidFloor);
    rewarded->setDelegate(std::static_pointer_cast<VembaRewardedAdDelegate>(delegate));
    rewarded->load();
    keepAlive = rewarded;
  }
  const guint timer = g_timeout_add_full(
      G_PRIORITY_DEFAULT, static_cast<guint>(timeout * 1000),
      [](gpointer data) -> gboolean {
        g_main_loop_quit(static_cast<GMainLoop*>(data));
        return G_SOURCE_REMOVE;
      },
      loop, nullptr);
  g_main_loop_run(loop);
  if (delegate->called) {
    g_source_remove(timer);
  }
  g_main_loop_unref(loop);
  if (!delegate->called) {
    reportTimeout("no callback", timeout);
    return kExitTimeout;
  }
  return 0;
}

int runRequest(const Args& args) {
  const std::optional<Options> options = Options::parse(args, adOptionNames(), {});
  if (!options) {
    return kExitUsage;
  }
  const std::optional<AdOptions> ad = readAdOptions(*options);
  if (!ad) {
    return kExitUsage;
  }
  VembaSDK::shared().setPrivacy(ad->privacy);
  // The request a load of this ad would send, built by the same exchange code.
  const auto body =
      inspection::bidRequestBody(ad->format == Format::rewarded, ad->adUnitId, ad->bidFloor);
  if (!body) {
    std::fprintf(stderr, "vemba-inspect: the request cannot be encoded: %s\n",
                 body.error().c_str());
    return 1;
  }
  printLine(*body);
  return 0;
}

int runUserAgent(const Args& args) {
  if (!args.empty() && args.front() == "--checkout") {
    return runCheckoutUserAgent(Args(args.begin() + 1, args.end()));
  }
  if (!args.empty()) {
    std::fprintf(stderr, "vemba-inspect: unknown option '%s'\n", args.front().c_str());
    return kExitUsage;
  }
  printLine(inspection::adUserAgent());
  return 0;
}

}  // namespace vemba::inspect
