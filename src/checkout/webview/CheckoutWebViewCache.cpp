// The process-wide state of CheckoutWebView: the one cache entry, the uncacheable view and the
// "preloading activated by client" flag.
#include <atomic>
#include <chrono>
#include <cmath>
#include <string_view>

#include "checkout/config/ConfigurationStore.h"
#include "checkout/config/OSLogger.h"
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

struct CacheEntry {
  std::string key;
  std::shared_ptr<CheckoutWebView> view;
  std::chrono::system_clock::time_point timestamp;
  std::chrono::duration<double> timeout;

  // Fresh while the age, as a magnitude (a clock set back counts as well), is below the timeout.
  bool isFresh(std::chrono::system_clock::time_point now) const {
    return std::abs(std::chrono::duration<double>(now - timestamp).count()) < timeout.count();
  }
};

// Main thread only, except the flag (see the header). Never destroyed: a cached view must not be
// torn down by static destructors after the platform has gone.
struct CacheState {
  std::optional<CacheEntry> cache;
  std::weak_ptr<CheckoutWebView> uncacheableViewRef;
};

CacheState& state() {
  static CacheState* const instance = new CacheState();
  return *instance;
}

std::atomic<bool> gPreloadingActivatedByClient{false};

void clearPreloadingActivatedByClient() {
  gPreloadingActivatedByClient = false;
}

std::string_view boolText(bool value) {
  return value ? "true" : "false";
}

std::chrono::system_clock::time_point now() {
  return platform::services().clock->wallNow();
}

std::shared_ptr<CheckoutWebView> uncacheableView(platform::Ui& ui,
                                                 std::optional<MetaData::EntryPoint> entry) {
  CacheState& statics = state();
  if (const std::shared_ptr<CheckoutWebView> previous = statics.uncacheableViewRef.lock()) {
    previous->detachBridge();
  }
  std::shared_ptr<CheckoutWebView> view = CheckoutWebView::create(ui, /*recovery=*/false, entry);
  statics.uncacheableViewRef = view;
  return view;
}

}  // namespace

std::string CheckoutWebView::cacheKey(const Url& checkout,
                                      std::optional<MetaData::EntryPoint> entry) {
  std::string key = checkout.absoluteString();
  key.append(kKeySeparator).append(entry ? rawValue(*entry) : kNoEntryPoint);
  return key;
}

std::shared_ptr<CheckoutWebView> CheckoutWebView::forCheckout(
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
    return create(*ui, /*recovery=*/true, entry);
  }

  const std::string key = cacheKey(checkout, entry);
  if (!configuration().preloading.enabled()) {
    OSLogger::shared().debug(kPreloadingNotEnabled);
    return uncacheableView(*ui, entry);
  }

  CacheState& statics = state();
  if (statics.cache && statics.cache->key == key && statics.cache->isFresh(now())) {
    OSLogger::shared().debug(kPresentingCached);
    return statics.cache->view;
  }
  std::shared_ptr<CheckoutWebView> view = create(*ui, /*recovery=*/false, entry);
  // The earlier entry's view is simply released (its bridge stays as it is).
  statics.cache = CacheEntry{key, view, now(), kCacheTimeout};
  return view;
}

void CheckoutWebView::invalidate(bool disconnect) {
  OSLogger::shared().debug(std::string(kInvalidating) + std::string(boolText(disconnect)));
  gPreloadingActivatedByClient = false;
  CacheState& statics = state();
  if (disconnect && statics.cache) {
    statics.cache->view->detachBridge();
  }
  // Take the entry out before releasing it: its view's teardown may log and must see an empty
  // cache.
  std::optional<CacheEntry> released = std::move(statics.cache);
  statics.cache.reset();
}

void CheckoutWebView::dropFromCache(const CheckoutWebView& view) {
  CacheState& statics = state();
  if (!statics.cache || statics.cache->view.get() != &view) {
    return;
  }
  OSLogger::shared().debug(kDroppingDeadView);
  std::optional<CacheEntry> released = std::move(statics.cache);
  statics.cache.reset();
}

std::shared_ptr<CheckoutWebView> CheckoutWebView::cachedView() {
  const CacheState& statics = state();
  return statics.cache ? statics.cache->view : nullptr;
}

bool CheckoutWebView::preloadingActivatedByClient() {
  return gPreloadingActivatedByClient;
}

void CheckoutWebView::setPreloadingActivatedByClient(bool activated) {
  // Every write of the configuration's preloading switch clears the flag. Installing the hook
  // when the flag is first set is enough: before that, clearing it changes nothing.
  detail::setPreloadingEnabledWriteHook(&clearPreloadingActivatedByClient);
  gPreloadingActivatedByClient = activated;
}

void CheckoutWebView::resetForTesting() {
  CacheState& statics = state();
  std::optional<CacheEntry> released = std::move(statics.cache);
  statics.cache.reset();
  statics.uncacheableViewRef.reset();
  gPreloadingActivatedByClient = false;
}

}  // namespace vemba::checkout
