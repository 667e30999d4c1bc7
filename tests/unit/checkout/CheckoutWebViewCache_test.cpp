#include <gtest/gtest.h>

#include <functional>

#include "CheckoutScreenTestSupport.h"
#include "vemba/checkout/Checkout.h"
#include "vemba/checkout/CheckoutSheet.h"

namespace vemba::checkout {
namespace {

using std::chrono::milliseconds;
using tests::url;
constexpr auto kAccelerated = MetaData::EntryPoint::acceleratedCheckouts;

using CheckoutWebViewCacheTest = tests::CheckoutScreenTest;

TEST_F(CheckoutWebViewCacheTest, AnEntryServesItsKeyForStrictlyLessThanFiveMinutes) {
  const auto first = obtain();
  advance(milliseconds(299'999));
  EXPECT_EQ(obtain(), first);
  advance(milliseconds(1));  // age 300 s: stale
  const auto second = obtain();
  EXPECT_NE(second, first);
  EXPECT_EQ(obtain(), second);
  EXPECT_EQ(countLog("(Debug) - Presenting cached entry"), 2U);
}

TEST_F(CheckoutWebViewCacheTest, EntryPointsAreCachedApartInOneEntry) {
  const auto accelerated = obtain(kAccelerated);
  const auto plain = obtain();
  EXPECT_NE(plain, accelerated);
  EXPECT_EQ(plain->entryPoint(), std::nullopt);
  // One entry: the plain view replaced the accelerated one, which was only released.
  EXPECT_NE(obtain(kAccelerated), accelerated);
  EXPECT_TRUE(hasBridge(*accelerated));
}

TEST_F(CheckoutWebViewCacheTest,
       WithoutPreloadingNothingIsPreloadedOrCachedAndOnlyTheLastViewKeepsItsBridge) {
  configure([](Configuration& c) { c.preloading.setEnabled(false); });
  preload(checkout);
  EXPECT_TRUE(platform.ui.webViews.empty());
  EXPECT_FALSE(state().cache.preloadingActivatedByClient());
  // Each view is new, and only the last one keeps its bridge.
  const auto first = obtain();
  const auto second = obtain();
  EXPECT_NE(first, second);
  EXPECT_FALSE(hasBridge(*first));
  EXPECT_TRUE(hasBridge(*second));

  configure([](Configuration& c) { c.preloading.setEnabled(true); });
  EXPECT_NE(obtain(), second);  // nothing was cached meanwhile
  preload(checkout);
  EXPECT_TRUE(state().cache.preloadingActivatedByClient());
  EXPECT_EQ(fakeOf(*obtain()).loads.size(), 1U);
}

TEST_F(CheckoutWebViewCacheTest, EveryInvalidationPointEmptiesTheCacheAndClearsTheFlag) {
  struct Case {
    const char* name;
    std::function<void(CheckoutWebView&)> action;
    bool disconnects;
  };
  const Case cases[] = {
      {"public invalidate", [](CheckoutWebView&) { invalidate(); }, true},
      {"configure", [](CheckoutWebView&) { configure([](Configuration& c) { c.title = "T"; }); },
       true},
      {"set configuration", [](CheckoutWebView&) { setConfiguration(configuration()); }, true},
      {"recovery requested",
       [this](CheckoutWebView&) { state().cache.forCheckout(checkout, true, std::nullopt); }, true},
      {"HTTP error of the document",
       [this](CheckoutWebView& view) {
         view.load(checkout);
         fakeOf(view).decidePolicyForNavigationResponse({checkout, 500, true});
       },
       true},
      {"completion by the bridge",
       [](CheckoutWebView& view) {
         fakeOf(view).postMessage("mobileCheckoutSdk",
                                  tests::envelope("completed", R"({"orderDetails":{}})"));
       },
       false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    resetCheckoutState();
    const auto cached = obtain();
    state().cache.setPreloadingActivatedByClient(true);
    c.action(*cached);
    EXPECT_FALSE(state().cache.preloadingActivatedByClient());
    EXPECT_EQ(hasBridge(*cached), !c.disconnects);
    EXPECT_NE(obtain(), cached);
  }
}

// A preloaded page, or the page of a sheet closed (though its host keeps it), whose process dies
// leaves the cache without a word to anybody; the host's preload stands, and the next sheet loads
// afresh.
TEST_F(CheckoutWebViewCacheTest, ACachedPageWhoseProcessDiesOffScreenLeavesWithoutAWord) {
  preload(checkout);
  const auto preloaded = state().cache.cachedView();
  fakeOf(*preloaded).terminateWebContentProcess();
  EXPECT_EQ(state().cache.cachedView(), nullptr);
  EXPECT_TRUE(state().cache.preloadingActivatedByClient());

  const auto host = std::make_shared<tests::RecordingDelegate>();
  const auto sheet = show(host);
  const auto shown = page(sheet).checkoutView();
  ASSERT_EQ(state().cache.cachedView(), shown);
  EXPECT_TRUE(fakeOf(*shown).loads.at(0).headers.empty());
  page(sheet).close();
  hostScreen()->dismiss(false, {});
  drain();
  fakeOf(*shown).terminateWebContentProcess();
  EXPECT_EQ(host->calls, std::vector<std::string>{"cancel"});
  EXPECT_EQ(state().cache.cachedView(), nullptr);
}

TEST_F(CheckoutWebViewCacheTest, OnceASheetExistsStylingKeepsThePreloadedPage) {
  preload(checkout);
  const auto preloaded = obtain();
  ASSERT_EQ(fakeOf(*preloaded).loads.size(), 1U);
  const CheckoutSheet sheet(checkout);
  EXPECT_FALSE(state().configuration.invalidateOnConfigurationChange());
  sheet.title("Pay").tintColor(Color::rgba(0, 0, 0, 1));
  EXPECT_EQ(configuration().title, "Pay");
  EXPECT_EQ(obtain(), preloaded);
  EXPECT_TRUE(state().cache.preloadingActivatedByClient());

  // Any write of the preloading switch, even of the value it has, forgets the host's preload.
  configure([](Configuration& c) { c.preloading.setEnabled(true); });
  EXPECT_FALSE(state().cache.preloadingActivatedByClient());
  EXPECT_EQ(obtain(), preloaded);
}

TEST_F(CheckoutWebViewCacheTest, ConfiguringTheLogLevelTakesEffectAtOnce) {
  configure([](Configuration& c) { c.logLevel = LogLevel::none; });
  const std::size_t before = platform.log.lines.size();
  invalidate();
  OSLogger::shared().error("x");
  EXPECT_EQ(platform.log.lines.size(), before);
}

}  // namespace
}  // namespace vemba::checkout
