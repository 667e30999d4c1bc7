#include "DemoWindow.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <vector>

#include "Inspection.h"
#include "vemba/Vemba.h"
#include "vemba/checkout/Checkout.h"
#include "vemba/checkout/CheckoutDelegate.h"
#include "vemba/checkout/CheckoutViewController.h"
#include "vemba/checkout/Configuration.h"
#include "vemba/linux/Images.h"
#include "vemba/linux/Screens.h"

namespace vemba::demo {
namespace {

constexpr int kWindowWidth = 1120;
constexpr int kWindowHeight = 760;
constexpr int kControlsWidth = 380;
// How long the host leaves a finished checkout on screen before dismissing it (long enough to
// see the confetti).
constexpr guint kDismissAfterCompleteMs = 2500;
constexpr guint kDismissAfterCancelMs = 300;
// How often the window looks for a loaded sheet over the shown ad.
constexpr guint kWatchIntervalMs = 100;

// The colours of the confetti particles (one small texture each).
constexpr std::array<std::uint32_t, 5> kConfettiColours = {0xE8505BFF, 0xF9D56EFF, 0x14B1ABFF,
                                                           0x6C5CE7FF, 0xF3ECC2FF};

struct Tint {
  const char* name;
  checkout::Color color;
};
const std::array<Tint, 3> kTints = {{{"Default blue", checkout::kDefaultTintColor},
                                     {"Moss", checkout::Color::rgba(0.29, 0.49, 0.27, 1.0)},
                                     {"Plum", checkout::Color::rgba(0.50, 0.22, 0.48, 1.0)}}};

struct Scheme {
  const char* name;
  checkout::UserAgent::ColorScheme value;
};
const std::array<Scheme, 4> kSchemes = {{{"automatic", checkout::UserAgent::ColorScheme::automatic},
                                         {"light", checkout::UserAgent::ColorScheme::light},
                                         {"dark", checkout::UserAgent::ColorScheme::dark},
                                         {"web", checkout::UserAgent::ColorScheme::web}}};

platform::Image confettiParticle(std::uint32_t rgba) {
  constexpr int kWidth = 10;
  constexpr int kHeight = 6;
  std::vector<guint8> pixels(static_cast<std::size_t>(kWidth * kHeight * 4));
  for (std::size_t i = 0; i < pixels.size(); i += 4) {
    pixels[i] = static_cast<guint8>(rgba >> 24);
    pixels[i + 1] = static_cast<guint8>(rgba >> 16);
    pixels[i + 2] = static_cast<guint8>(rgba >> 8);
    pixels[i + 3] = static_cast<guint8>(rgba);
  }
  GBytes* bytes = g_bytes_new(pixels.data(), pixels.size());
  GdkTexture* texture =
      gdk_memory_texture_new(kWidth, kHeight, GDK_MEMORY_R8G8B8A8, bytes, kWidth * 4);
  g_bytes_unref(bytes);
  platform::Image image = imageFromTexture(texture);
  g_object_unref(texture);
  return image;
}

GtkWidget* sectionTitle(const char* text) {
  GtkWidget* label = gtk_label_new(text);
  gtk_widget_add_css_class(label, "title-4");
  gtk_widget_add_css_class(label, "section-title");
  gtk_label_set_xalign(GTK_LABEL(label), 0);
  return label;
}

template <typename Fn>
GtkWidget* button(const char* label, Fn callback) {
  GtkWidget* widget = gtk_button_new_with_label(label);
  auto* boxed = new Fn(std::move(callback));
  g_signal_connect_data(
      widget, "clicked",
      G_CALLBACK(+[](GtkButton*, gpointer data) { (*static_cast<Fn*>(data))(); }), boxed,
      +[](gpointer data, GClosure*) { delete static_cast<Fn*>(data); },
      static_cast<GConnectFlags>(0));
  gtk_widget_set_hexpand(widget, TRUE);
  return widget;
}

GtkWidget* row(std::initializer_list<GtkWidget*> children) {
  GtkWidget* box = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 8);
  gtk_box_set_homogeneous(GTK_BOX(box), TRUE);
  for (GtkWidget* child : children) {
    gtk_box_append(GTK_BOX(box), child);
  }
  return box;
}

GtkWidget* labelled(const char* text, GtkWidget* control) {
  GtkWidget* box = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 8);
  GtkWidget* label = gtk_label_new(text);
  gtk_label_set_xalign(GTK_LABEL(label), 0);
  gtk_widget_set_hexpand(label, TRUE);
  gtk_box_append(GTK_BOX(box), label);
  gtk_widget_set_valign(control, GTK_ALIGN_CENTER);
  gtk_box_append(GTK_BOX(box), control);
  return box;
}

const char* kCss = R"(
.controls { background: alpha(@theme_fg_color, 0.04); padding: 18px; }
.section-title { margin-top: 10px; }
.reward { font-weight: bold; color: #2f7d4a; }
.hint { color: alpha(@theme_fg_color, 0.6); font-size: smaller; }
)";

}  // namespace

// The host's delegates for both halves: each call becomes one event of the window.
struct DemoWindow::Delegates final : VembaInterstitialAdDelegate,
                                     VembaRewardedAdDelegate,
                                     checkout::CheckoutDelegate {
  explicit Delegates(DemoWindow& window) : w(window) {}
  DemoWindow& w;

  void adDidLoad(VembaInterstitialAd&) override { ads("interstitial", "adDidLoad"); }
  void adDidFailToLoad(VembaInterstitialAd&, const Error& error) override {
    ads("interstitial", "adDidFailToLoad", error.description);
  }
  void adDidShow(VembaInterstitialAd&) override {
    ads("interstitial", "adDidShow");
    w.watchScreenOverAd();
  }
  void adDidDismiss(VembaInterstitialAd&) override { ads("interstitial", "adDidDismiss"); }
  void adDidClick(VembaInterstitialAd&) override { ads("interstitial", "adDidClick"); }
  void adDidFailToShow(VembaInterstitialAd&, const Error& error) override {
    ads("interstitial", "adDidFailToShow", error.description);
  }
  void adDidRecordImpression(VembaInterstitialAd&, const AdValue& value) override {
    impression("interstitial", value);
  }
  void adDidExpire(VembaInterstitialAd&) override { ads("interstitial", "adDidExpire"); }

  void adDidLoad(VembaRewardedAd&) override { ads("rewarded", "adDidLoad"); }
  void adDidFailToLoad(VembaRewardedAd&, const Error& error) override {
    ads("rewarded", "adDidFailToLoad", error.description);
  }
  void adDidShow(VembaRewardedAd&) override { ads("rewarded", "adDidShow"); }
  void adDidDismiss(VembaRewardedAd&) override { ads("rewarded", "adDidDismiss"); }
  void adDidClick(VembaRewardedAd&) override { ads("rewarded", "adDidClick"); }
  void adDidFailToShow(VembaRewardedAd&, const Error& error) override {
    ads("rewarded", "adDidFailToShow", error.description);
  }
  void adDidRecordImpression(VembaRewardedAd&, const AdValue& value) override {
    impression("rewarded", value);
  }
  void adDidExpire(VembaRewardedAd&) override { ads("rewarded", "adDidExpire"); }
  void adDidEarnReward(VembaRewardedAd&, const VembaReward& reward) override {
    ++w.rewards_;
    const std::string total = "Rewards earned: " + std::to_string(w.rewards_);
    gtk_label_set_text(GTK_LABEL(w.rewardLabel_), total.c_str());
    ads("rewarded", "adDidEarnReward",
        "amount " + std::to_string(reward.amount()) + ", type \"" + reward.type() + "\"");
  }

  void checkoutDidComplete(const checkout::CheckoutCompletedEvent& event) override {
    w.event("checkout", "checkoutDidComplete", "order " + event.orderDetails.id);
    dismissSoon(kDismissAfterCompleteMs);
  }
  void checkoutDidCancel() override {
    w.event("checkout", "checkoutDidCancel");
    dismissSoon(kDismissAfterCancelMs);
  }
  void checkoutDidFail(const checkout::CheckoutError& error) override {
    w.event("checkout", "checkoutDidFail",
            error.toError().description + (error.isRecoverable() ? " (recoverable)" : ""));
  }
  void checkoutDidClickLink(const Url& url) override {
    w.event("checkout", "checkoutDidClickLink", url.absoluteString());
    checkout::CheckoutDelegate::checkoutDidClickLink(url);
  }
  void checkoutDidEmitWebPixelEvent(const checkout::PixelEvent& event) override {
    const std::string name =
        std::visit([](const auto& e) { return e.name.value_or("(unnamed)"); }, event);
    w.event("checkout", "checkoutDidEmitWebPixelEvent", name);
  }

 private:
  void ads(const char* source, const char* name, const std::string& detail = {}) {
    w.updateButtons();
    w.event(source, name, detail);
  }
  // The impression's value in the event log, and the running total per currency in the panel.
  void impression(const char* source, const AdValue& value) {
    w.revenueMicros_[value.currencyCode] += value.valueMicros;
    std::string total = "Revenue:";
    for (const auto& [currency, micros] : w.revenueMicros_) {
      total += " " + units(micros) + " " + currency;
    }
    gtk_label_set_text(GTK_LABEL(w.revenueLabel_), total.c_str());
    ads(source, "adDidRecordImpression",
        units(value.valueMicros) + " " + value.currencyCode + " (" + value.precision + ")");
  }
  // Micros as whole units with six decimals, the same in every locale.
  static std::string units(std::int64_t micros) {
    constexpr std::int64_t kPerUnit = 1'000'000;
    const std::string fraction = std::to_string(kPerUnit + micros % kPerUnit).substr(1);
    return std::to_string(micros / kPerUnit) + "." + fraction;
  }
  void dismissSoon(guint milliseconds) {
    g_timeout_add_once(
        milliseconds, [](gpointer data) { static_cast<DemoWindow*>(data)->dismissCheckout(); }, &w);
  }
};

DemoWindow::DemoWindow(GtkApplication* app, Settings settings)
    : settings_(std::move(settings)), log_(settings_.echoLog) {
  GtkCssProvider* css = gtk_css_provider_new();
  gtk_css_provider_load_from_data(css, kCss, -1);
  gtk_style_context_add_provider_for_display(gdk_display_get_default(), GTK_STYLE_PROVIDER(css),
                                             GTK_STYLE_PROVIDER_PRIORITY_APPLICATION);
  g_object_unref(css);

  window_ = GTK_WINDOW(gtk_application_window_new(app));
  gtk_window_set_title(window_, "Vemba demo host");
  gtk_window_set_default_size(window_, kWindowWidth, kWindowHeight);

  GtkWidget* controls = gtk_box_new(GTK_ORIENTATION_VERTICAL, 10);
  gtk_widget_add_css_class(controls, "controls");
  gtk_widget_set_size_request(controls, kControlsWidth, -1);
  gtk_box_append(GTK_BOX(controls), buildAdsPanel());
  gtk_box_append(GTK_BOX(controls), buildPrivacyPanel());
  gtk_box_append(GTK_BOX(controls), buildCheckoutPanel());
  GtkWidget* scroller = gtk_scrolled_window_new();
  gtk_scrolled_window_set_policy(GTK_SCROLLED_WINDOW(scroller), GTK_POLICY_NEVER,
                                 GTK_POLICY_AUTOMATIC);
  gtk_scrolled_window_set_child(GTK_SCROLLED_WINDOW(scroller), controls);

  GtkWidget* logPanel = gtk_box_new(GTK_ORIENTATION_VERTICAL, 6);
  gtk_widget_set_margin_start(logPanel, 12);
  gtk_widget_set_margin_end(logPanel, 12);
  gtk_widget_set_margin_bottom(logPanel, 12);
  gtk_box_append(GTK_BOX(logPanel), sectionTitle("Event log"));
  gtk_box_append(GTK_BOX(logPanel), log_.widget());

  GtkWidget* content = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 0);
  gtk_box_append(GTK_BOX(content), scroller);
  gtk_box_append(GTK_BOX(content), logPanel);
  gtk_window_set_child(window_, content);

  delegates_ = std::make_shared<Delegates>(*this);
  updateButtons();
  gtk_window_present(window_);
  event("demo", "started", "exchange at " + settings_.exchangeOrigin);
}

DemoWindow::~DemoWindow() = default;

GtkWidget* DemoWindow::buildAdsPanel() {
  GtkWidget* box = gtk_box_new(GTK_ORIENTATION_VERTICAL, 8);
  gtk_box_append(GTK_BOX(box), sectionTitle("Ads"));
  adUnitEntry_ = gtk_entry_new();
  gtk_editable_set_text(GTK_EDITABLE(adUnitEntry_), settings_.adUnit.c_str());
  gtk_box_append(GTK_BOX(box), labelled("Ad unit", adUnitEntry_));
  showInterstitialButton_ = button("Show interstitial", [this] { showInterstitial(); });
  showRewardedButton_ = button("Show rewarded", [this] { showRewarded(); });
  gtk_box_append(GTK_BOX(box), row({button("Load interstitial", [this] { loadInterstitial(); }),
                                    showInterstitialButton_}));
  gtk_box_append(GTK_BOX(box),
                 row({button("Load rewarded", [this] { loadRewarded(); }), showRewardedButton_}));
  rewardLabel_ = gtk_label_new("Rewards earned: 0");
  gtk_widget_add_css_class(rewardLabel_, "reward");
  gtk_label_set_xalign(GTK_LABEL(rewardLabel_), 0);
  gtk_box_append(GTK_BOX(box), rewardLabel_);
  revenueLabel_ = gtk_label_new("Revenue: none yet");
  gtk_widget_add_css_class(revenueLabel_, "reward");
  gtk_label_set_xalign(GTK_LABEL(revenueLabel_), 0);
  gtk_box_append(GTK_BOX(box), revenueLabel_);
  return box;
}

GtkWidget* DemoWindow::buildPrivacyPanel() {
  GtkWidget* box = gtk_box_new(GTK_ORIENTATION_VERTICAL, 8);
  gtk_box_append(GTK_BOX(box), sectionTitle("Privacy"));
  const auto onChange =
      +[](GtkWidget* /*widget*/, gpointer self) { static_cast<DemoWindow*>(self)->applyPrivacy(); };
  for (GtkWidget** entry : {&tcfEntry_, &usPrivacyEntry_, &gppEntry_, &gppSectionsEntry_}) {
    *entry = gtk_entry_new();
    g_signal_connect(*entry, "changed", G_CALLBACK(onChange), this);
  }
  gtk_entry_set_placeholder_text(GTK_ENTRY(usPrivacyEntry_), "1YNN");
  gtk_entry_set_placeholder_text(GTK_ENTRY(gppSectionsEntry_), "2,6");
  const auto onToggle = +[](GObject* /*toggle*/, GParamSpec* /*spec*/, gpointer self) {
    static_cast<DemoWindow*>(self)->applyPrivacy();
  };
  for (GtkWidget** toggle : {&gdprSwitch_, &coppaSwitch_, &lmtSwitch_}) {
    *toggle = gtk_switch_new();
    g_signal_connect(*toggle, "notify::active", G_CALLBACK(onToggle), this);
  }
  gtk_box_append(GTK_BOX(box), labelled("GDPR applies", gdprSwitch_));
  gtk_box_append(GTK_BOX(box), labelled("TCF consent", tcfEntry_));
  gtk_box_append(GTK_BOX(box), labelled("GPP", gppEntry_));
  gtk_box_append(GTK_BOX(box), labelled("GPP sections", gppSectionsEntry_));
  gtk_box_append(GTK_BOX(box), labelled("US privacy", usPrivacyEntry_));
  gtk_box_append(GTK_BOX(box), labelled("Child-directed (COPPA)", coppaSwitch_));
  gtk_box_append(GTK_BOX(box), labelled("Limit ad tracking", lmtSwitch_));
  return box;
}

void DemoWindow::setGdprConsent(bool applies, const std::string& consent) {
  gtk_switch_set_active(GTK_SWITCH(gdprSwitch_), applies ? TRUE : FALSE);
  gtk_editable_set_text(GTK_EDITABLE(tcfEntry_), consent.c_str());
}

void DemoWindow::applyPrivacy() {
  const auto text = [](GtkWidget* entry) -> std::optional<std::string> {
    std::string value = gtk_editable_get_text(GTK_EDITABLE(entry));
    return value.empty() ? std::nullopt : std::optional(value);
  };
  const auto flag = [](GtkWidget* toggle) -> std::optional<bool> {
    return gtk_switch_get_active(GTK_SWITCH(toggle)) ? std::optional(true) : std::nullopt;
  };
  VembaPrivacy privacy;
  privacy.gdprApplies = flag(gdprSwitch_);
  privacy.childDirected = flag(coppaSwitch_);
  privacy.limitAdTracking = flag(lmtSwitch_);
  privacy.tcfConsent = text(tcfEntry_);
  privacy.usPrivacy = text(usPrivacyEntry_);
  privacy.gpp = text(gppEntry_);
  if (const std::optional<std::string> sections = text(gppSectionsEntry_)) {
    std::vector<std::int64_t> ids;
    for (std::size_t at = 0; at <= sections->size();) {
      const std::size_t comma = std::min(sections->find(',', at), sections->size());
      std::int64_t id = 0;
      const char* first = sections->data() + at;
      if (std::from_chars(first, sections->data() + comma, id).ec == std::errc()) {
        ids.push_back(id);
      }
      at = comma + 1;
    }
    privacy.gppSectionIds = std::move(ids);
  }
  VembaSDK::shared().setPrivacy(std::move(privacy));
}

GtkWidget* DemoWindow::buildCheckoutPanel() {
  GtkWidget* box = gtk_box_new(GTK_ORIENTATION_VERTICAL, 8);
  gtk_box_append(GTK_BOX(box), sectionTitle("Checkout"));
  checkoutUrlEntry_ = gtk_entry_new();
  gtk_editable_set_text(GTK_EDITABLE(checkoutUrlEntry_),
                        (settings_.exchangeOrigin + "/checkout/demo").c_str());
  gtk_box_append(GTK_BOX(box), checkoutUrlEntry_);
  gtk_box_append(GTK_BOX(box), row({button("Preload", [this] { preloadCheckout(); }),
                                    button("Present", [this] { presentCheckout(); }),
                                    button("Invalidate", [this] { invalidateCheckout(); })}));

  preloadSwitch_ = gtk_switch_new();
  gtk_switch_set_active(GTK_SWITCH(preloadSwitch_), checkout::configuration().preloading.enabled());
  g_signal_connect(preloadSwitch_, "state-set",
                   G_CALLBACK(+[](GtkSwitch*, gboolean on, gpointer self) -> gboolean {
                     static_cast<DemoWindow*>(self)->applyPreloading(on != FALSE);
                     return FALSE;
                   }),
                   this);
  gtk_box_append(GTK_BOX(box), labelled("Preloading", preloadSwitch_));

  confettiSwitch_ = gtk_switch_new();
  g_signal_connect(confettiSwitch_, "state-set",
                   G_CALLBACK(+[](GtkSwitch*, gboolean on, gpointer self) -> gboolean {
                     static_cast<DemoWindow*>(self)->applyConfetti(on != FALSE);
                     return FALSE;
                   }),
                   this);
  gtk_box_append(GTK_BOX(box), labelled("Confetti on completion", confettiSwitch_));

  std::vector<const char*> schemeNames;
  for (const Scheme& scheme : kSchemes) {
    schemeNames.push_back(scheme.name);
  }
  schemeNames.push_back(nullptr);
  GtkWidget* schemes = gtk_drop_down_new_from_strings(schemeNames.data());
  g_signal_connect(
      schemes, "notify::selected",
      G_CALLBACK(+[](GtkDropDown* dropDown, GParamSpec*, gpointer self) {
        const Scheme& chosen = kSchemes.at(gtk_drop_down_get_selected(dropDown));
        checkout::configure([&](checkout::Configuration& c) { c.colorScheme = chosen.value; });
        static_cast<DemoWindow*>(self)->event("demo", "colour scheme", chosen.name);
      }),
      this);
  gtk_box_append(GTK_BOX(box), labelled("Colour scheme", schemes));

  std::vector<const char*> tintNames;
  for (const Tint& tint : kTints) {
    tintNames.push_back(tint.name);
  }
  tintNames.push_back(nullptr);
  GtkWidget* tints = gtk_drop_down_new_from_strings(tintNames.data());
  g_signal_connect(
      tints, "notify::selected", G_CALLBACK(+[](GtkDropDown* dropDown, GParamSpec*, gpointer self) {
        const Tint& chosen = kTints.at(gtk_drop_down_get_selected(dropDown));
        checkout::configure([&](checkout::Configuration& c) { c.tintColor = chosen.color; });
        static_cast<DemoWindow*>(self)->event("demo", "tint", chosen.name);
      }),
      this);
  gtk_box_append(GTK_BOX(box), labelled("Tint", tints));

  GtkWidget* hint = gtk_label_new(
      "Pages and ads come from the local exchange on 127.0.0.1; links leave the app only as "
      "log lines.");
  gtk_label_set_wrap(GTK_LABEL(hint), TRUE);
  gtk_label_set_xalign(GTK_LABEL(hint), 0);
  gtk_widget_add_css_class(hint, "hint");
  gtk_box_append(GTK_BOX(box), hint);
  return box;
}

std::shared_ptr<ScreenHandle> DemoWindow::screen() const {
  return screenForWindow(window_);
}

std::string DemoWindow::adUnit() const {
  return gtk_editable_get_text(GTK_EDITABLE(adUnitEntry_));
}

std::string DemoWindow::checkoutUrl() const {
  return gtk_editable_get_text(GTK_EDITABLE(checkoutUrlEntry_));
}

void DemoWindow::event(std::string_view source, std::string_view name, std::string_view detail) {
  std::string text(name);
  if (!detail.empty()) {
    text.append(": ").append(detail);
  }
  log_.add(source, text);
  if (listener_) {
    listener_(std::string(source) + "." + std::string(name));
  }
}

void DemoWindow::updateButtons() {
  gtk_widget_set_sensitive(showInterstitialButton_, interstitial_ && interstitial_->isReady());
  gtk_widget_set_sensitive(showRewardedButton_, rewarded_ && rewarded_->isReady());
}

void DemoWindow::loadInterstitial() {
  interstitial_ = VembaInterstitialAd::create(adUnit());
  interstitial_->setDelegate(std::static_pointer_cast<VembaInterstitialAdDelegate>(delegates_));
  event("interstitial", "load", interstitial_->adUnitId());
  updateButtons();
  interstitial_->load();
}

void DemoWindow::showInterstitial() {
  if (interstitial_) {
    event("interstitial", "show");
    interstitial_->show(screen());
    updateButtons();
  }
}

void DemoWindow::loadRewarded() {
  rewarded_ = VembaRewardedAd::create(adUnit());
  rewarded_->setDelegate(std::static_pointer_cast<VembaRewardedAdDelegate>(delegates_));
  event("rewarded", "load", rewarded_->adUnitId());
  updateButtons();
  rewarded_->load();
}

void DemoWindow::showRewarded() {
  if (rewarded_) {
    event("rewarded", "show");
    rewarded_->show(screen());
    updateButtons();
  }
}

void DemoWindow::setCheckoutUrl(const std::string& url) {
  gtk_editable_set_text(GTK_EDITABLE(checkoutUrlEntry_), url.c_str());
}

void DemoWindow::setAdUnit(const std::string& adUnit) {
  gtk_editable_set_text(GTK_EDITABLE(adUnitEntry_), adUnit.c_str());
}

void DemoWindow::preloadCheckout() {
  const std::optional<Url> url = Url::parse(checkoutUrl());
  if (!url) {
    event("demo", "not a URL", checkoutUrl());
    return;
  }
  event("checkout", "preload", url->absoluteString());
  checkout::preload(*url);
}

void DemoWindow::presentCheckout() {
  const std::optional<Url> url = Url::parse(checkoutUrl());
  if (!url) {
    event("demo", "not a URL", checkoutUrl());
    return;
  }
  event("checkout", "present", url->absoluteString());
  sheet_ = checkout::present(*url, screen(),
                             std::static_pointer_cast<checkout::CheckoutDelegate>(delegates_));
}

void DemoWindow::invalidateCheckout() {
  event("checkout", "invalidate");
  checkout::invalidate();
}

void DemoWindow::dismissCheckout() {
  if (const std::shared_ptr<checkout::CheckoutViewController> sheet = std::move(sheet_)) {
    sheet->dismiss(/*animated=*/true, [this] { event("checkout", "dismissed"); });
  }
}

void DemoWindow::dismissScreenOverAd() {
  inspection::dismissPresentedOver(inspection::presentedOver(screen()),
                                   [this] { event("demo", "sheet over the ad dismissed"); });
}

void DemoWindow::watchScreenOverAd() {
  g_timeout_add(
      kWatchIntervalMs,
      [](gpointer data) -> gboolean {
        auto* self = static_cast<DemoWindow*>(data);
        const std::shared_ptr<ScreenHandle> ad = inspection::presentedOver(self->screen());
        if (!ad) {
          return G_SOURCE_REMOVE;  // the ad is gone
        }
        if (!inspection::pageLoaded(inspection::presentedOver(ad))) {
          return G_SOURCE_CONTINUE;
        }
        self->event("demo", "sheet over the ad loaded");
        return G_SOURCE_REMOVE;
      },
      this);
}

void DemoWindow::setConfetti(bool enabled) {
  // Through the switch, so that it shows the state; it applies the change when it moves.
  if (gtk_switch_get_active(GTK_SWITCH(confettiSwitch_)) == enabled) {
    applyConfetti(enabled);
  } else {
    gtk_switch_set_active(GTK_SWITCH(confettiSwitch_), enabled);
  }
}

void DemoWindow::applyConfetti(bool enabled) {
  checkout::configure([enabled](checkout::Configuration& c) {
    c.confetti.enabled = enabled;
    c.confetti.particles.clear();
    if (enabled) {
      for (const std::uint32_t colour : kConfettiColours) {
        c.confetti.particles.push_back(confettiParticle(colour));
      }
    }
  });
  event("demo", "confetti", enabled ? "on" : "off");
}

void DemoWindow::setPreloading(bool enabled) {
  if (gtk_switch_get_active(GTK_SWITCH(preloadSwitch_)) == enabled) {
    applyPreloading(enabled);
  } else {
    gtk_switch_set_active(GTK_SWITCH(preloadSwitch_), enabled);
  }
}

void DemoWindow::applyPreloading(bool enabled) {
  checkout::configure([enabled](checkout::Configuration& c) { c.preloading.setEnabled(enabled); });
  event("demo", "preloading", enabled ? "on" : "off");
}

}  // namespace vemba::demo
