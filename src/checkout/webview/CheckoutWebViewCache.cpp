#include "checkout/webview/CheckoutWebViewCache.h"

#include <cmath>
#include <string_view>

#include "checkout/config/OSLogger.h"
#include "checkout/webview/CheckoutState.h"
#include "checkout/webview/CheckoutWebView.h"
#include "platform/Clock.h"
#include "platform/Services.h"
#include "vemba/checkout/Configuration.h"

namespace vemba::checkout {
namespace {

constexpr std::string_view kCreating = "Creating webview for URL: ";
constexpr std::string_view kRecovery = ", recovery: ";
constexpr std::string_view kPreloadingNotEnabled = "Preloading not enabled";
constexpr std::string_view kPresentingCached = "Presenting cached entry";
constexpr std::string_view kInvalidating = "Invalidating cache, disconnect: ";
constexpr std::string_view kDroppingDeadView = "Dropping cached webview: its content process ended";
constexpr std::string_view kKeySeparator = "_";
constexpr std::string_view kNoEntryPoint = "nil";

std::string_view boolText(bool value) {
  return value ? "true" : "false";
}

std::chrono::system_clock::time_point now() {
  return platform::services().clock->wallNow();
}

// Fresh while the age, as a magnitude (a clock set back counts as well), is below the timeout.
bool isFresh(std::chrono::system_clock::time_point timestamp) {
  return std::abs(std::chrono::duration<double>(now() - timestamp).count()) <
         CheckoutWebViewCache::kTimeout.count();
}

}  // namespace

std::string CheckoutWebViewCache::key(const Url& checkout,
                                      std::optional<MetaData::EntryPoint> entry) {
  std::string key = checkout.absoluteString();
  key.append(kKeySeparator).append(entry ? rawValue(*entry) : kNoEntryPoint);
  return key;
}

std::shared_ptr<CheckoutWebView> CheckoutWebViewCache::forCheckout(
    const Url& checkout, bool recovery, std::optional<MetaData::EntryPoint> entry) {
  std::string line(kCreating);
  line.append(checkout.absoluteString()).append(kRecovery).append(boolText(recovery));
  OSLogger::shared().debug(line);

  platform::Ui* ui = platform::ui();
  if (ui == nullptr) {
    return nullptr;
  }
  if (recovery) {
    invalidate(/*disconnect=*/true);
    return CheckoutWebView::create(*ui, /*recovery=*/true, entry);
  }

  std::string cacheKey = key(checkout, entry);
  if (!configuration().preloading.enabled()) {
    OSLogger::shared().debug(kPreloadingNotEnabled);
    if (const std::shared_ptr<CheckoutWebView> previous = uncacheableViewRef_.lock()) {
      previous->detachBridge();
    }
    std::shared_ptr<CheckoutWebView> view = CheckoutWebView::create(*ui, /*recovery=*/false, entry);
    uncacheableViewRef_ = view;
    return view;
  }

  if (entry_ && entry_->key == cacheKey && isFresh(entry_->timestamp)) {
    OSLogger::shared().debug(kPresentingCached);
    return entry_->view;
  }
  std::shared_ptr<CheckoutWebView> view = CheckoutWebView::create(*ui, /*recovery=*/false, entry);
  // The earlier entry's view is simply released (its bridge stays as it is).
  release();
  entry_ = Entry{std::move(cacheKey), view, now()};
  return view;
}

void CheckoutWebViewCache::invalidate(bool disconnect) {
  OSLogger::shared().debug(std::string(kInvalidating) + std::string(boolText(disconnect)));
  preloadingActivatedByClient_ = false;
  if (disconnect && entry_) {
    entry_->view->detachBridge();
  }
  release();
}

void CheckoutWebViewCache::drop(const CheckoutWebView& view) {
  if (!entry_ || entry_->view.get() != &view) {
    return;
  }
  OSLogger::shared().debug(kDroppingDeadView);
  release();
}

std::shared_ptr<CheckoutWebView> CheckoutWebViewCache::cachedView() const {
  return entry_ ? entry_->view : nullptr;
}

void CheckoutWebViewCache::release() {
  const std::optional<Entry> released = std::move(entry_);
  entry_.reset();
}

}  // namespace vemba::checkout
