// The preload cache of checkout web views: one cached view, keyed by URL and entry point and
// reused for kTimeout; a separate "uncacheable" view, referenced weakly, when preloading is off;
// and the "preloading activated by client" flag. Recovery views are never cached.
//
// Owner: CheckoutState (one per process). Main thread only, except the flag, which is atomic
// because a write of the configuration's preloading switch, on any thread, clears it.
#pragma once

#include <atomic>
#include <chrono>
#include <memory>
#include <optional>
#include <string>

#include "vemba/Url.h"
#include "vemba/checkout/MetaData.h"

namespace vemba::checkout {

class CheckoutWebView;

class CheckoutWebViewCache {
 public:
  // How long a cached view may be reused.
  static constexpr std::chrono::duration<double> kTimeout{300.0};

  // The only way the kit obtains a view. Recovery: empties the cache with disconnection and
  // returns a new recovery view. Preloading disabled: a new uncacheable view (the previous one
  // loses its bridge). Otherwise the cached view when its key matches and it is fresh, else a
  // new view that replaces the cache entry. Null only when the platform has no user interface.
  std::shared_ptr<CheckoutWebView> forCheckout(const Url& checkout, bool recovery,
                                               std::optional<MetaData::EntryPoint> entry);
  // Empties the cache and clears the flag; with `disconnect`, the cached view first loses its
  // bridge.
  void invalidate(bool disconnect);
  // Empties the cache when its entry holds `view` (its content process died); nothing else.
  void drop(const CheckoutWebView& view);
  // The view in the cache entry, fresh or not, without using it; null when the cache is empty.
  // For tools that wait for a preload to finish.
  std::shared_ptr<CheckoutWebView> cachedView() const;
  // The cache key: the URL's absolute string, "_", the entry point's raw value or "nil".
  static std::string key(const Url& checkout, std::optional<MetaData::EntryPoint> entry);

  // Set by the host's preload; cleared by every invalidation and every write of the
  // configuration's preloading switch.
  bool preloadingActivatedByClient() const { return preloadingActivatedByClient_; }
  void setPreloadingActivatedByClient(bool activated) { preloadingActivatedByClient_ = activated; }

 private:
  struct Entry {
    std::string key;
    std::shared_ptr<CheckoutWebView> view;
    std::chrono::system_clock::time_point timestamp;
  };
  // Takes the entry out before releasing it: its view's teardown may log and must see an empty
  // cache.
  void release();

  std::optional<Entry> entry_;
  std::weak_ptr<CheckoutWebView> uncacheableViewRef_;
  std::atomic<bool> preloadingActivatedByClient_{false};
};

}  // namespace vemba::checkout
