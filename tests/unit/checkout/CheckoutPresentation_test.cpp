#include <gtest/gtest.h>

#include "CheckoutScreenTestSupport.h"
#include "checkout/sheet/ProgressBarView.h"
#include "vemba/checkout/Checkout.h"
#include "vemba/checkout/CheckoutSheet.h"

namespace vemba::checkout {
namespace {

using std::chrono::milliseconds;
using tests::dispatched;
using tests::RecordingDelegate;
using tests::url;

class CheckoutPresentationTest : public tests::CheckoutScreenTest {
 protected:
  static fake::FakeScreen& fakeScreen(const std::shared_ptr<ScreenHandle>& screen) {
    return dynamic_cast<fake::FakeScreen&>(*screen);
  }
  static fake::FakeWebView& pageView(const std::shared_ptr<CheckoutViewController>& sheet) {
    return fakeOf(*page(sheet).checkoutView());
  }
  static bool barShown(const std::shared_ptr<CheckoutViewController>& sheet) {
    return !page(sheet).progressBar().view().isHidden();
  }
  std::size_t presentedCount(const fake::FakeWebView& webView) const {
    const auto messages = dispatched(webView);
    return static_cast<std::size_t>(std::count(messages.begin(), messages.end(), "'presented'"));
  }

  std::shared_ptr<RecordingDelegate> delegate = std::make_shared<RecordingDelegate>();
};

TEST_F(CheckoutPresentationTest, PresentShowsTheCheckoutPageInASheet) {
  constexpr Color kBackground = Color::rgba(0.9, 0.9, 0.8, 1.0);
  configure([&](Configuration& c) {
    c.title = "Pay";
    c.backgroundColor = kBackground;
  });
  const auto sheet = show(delegate);
  ASSERT_NE(sheet, nullptr);
  EXPECT_EQ(hostScreen()->presentedScreen(), sheet->screen());
  EXPECT_EQ(platform::Screen::of(sheet->screen())->kind(), platform::Screen::Kind::navigation);

  CheckoutWebViewController& controller = page(sheet);
  const std::shared_ptr<platform::Screen>& root = controller.screen();
  EXPECT_EQ(root->title(), "Pay");
  EXPECT_EQ(root->navigationContainer(), sheet->screen().get());
  auto& rootView = dynamic_cast<fake::FakeView&>(root->view());
  EXPECT_EQ(rootView.backgroundColor, kBackground);
  // The web view below, the progress line in front.
  const auto subviews = rootView.subviews();
  ASSERT_EQ(subviews.size(), 2U);
  EXPECT_EQ(subviews[0], controller.checkoutView()->webViewPtr());
  EXPECT_EQ(subviews[1], controller.progressBar().viewPtr());

  fake::FakeWebView& webView = pageView(sheet);
  ASSERT_EQ(webView.loads.size(), 1U);
  EXPECT_TRUE(webView.loads[0].headers.empty());
  EXPECT_TRUE(barShown(sheet));
  EXPECT_EQ(presentedCount(webView), 0U);

  loadPage(webView);
  EXPECT_EQ(presentedCount(webView), 1U);
  EXPECT_FALSE(controller.initialNavigation());
  ASSERT_FALSE(platform.ui.animations.empty());
  EXPECT_EQ(platform.ui.animations.back().duration, fake::kNavigationBarHideShowDuration);
  advance(milliseconds(300));
  EXPECT_FALSE(barShown(sheet));
}

TEST_F(CheckoutPresentationTest, APreloadedPageIsReusedAndToldAtOnceThatItIsPresented) {
  preload(checkout);
  const auto preloaded = obtain();
  loadPage(fakeOf(*preloaded));
  const auto sheet = show(delegate);
  EXPECT_EQ(page(sheet).checkoutView(), preloaded);
  EXPECT_EQ(pageView(sheet).loads.size(), 1U);  // not loaded again
  EXPECT_FALSE(barShown(sheet));
  EXPECT_EQ(presentedCount(pageView(sheet)), 1U);

  // The same URL entered another way is a page of its own.
  const auto accelerated = present(checkout, platform.ui.createScreen(),
                                   MetaData::EntryPoint::acceleratedCheckouts, delegate);
  EXPECT_NE(page(accelerated).checkoutView(), preloaded);
  EXPECT_EQ(page(accelerated).checkoutView()->entryPoint(),
            MetaData::EntryPoint::acceleratedCheckouts);

  // A preload that is still loading shows the line.
  sheet->dismiss(false);
  resetCheckoutState();
  preload(checkout);
  fakeOf(*obtain()).startProvisionalNavigation();
  drain();
  const auto loading = show(delegate);
  EXPECT_TRUE(barShown(loading));
  EXPECT_EQ(pageView(loading).loads.size(), 1U);
}

TEST_F(CheckoutPresentationTest, TheCloseControlDependsOnTheTintAndTheSystemVersion) {
  struct Case {
    std::optional<Color> tint;
    const char* systemVersion;
    platform::BarButtonItem::Kind kind;
    const char* image;
  };
  constexpr Color kTint = Color::rgba(1, 0, 0, 1);
  using Kind = platform::BarButtonItem::Kind;
  for (const Case& c : {Case{std::nullopt, "26.0", Kind::systemClose, ""},
                        Case{kTint, "25.9.1", Kind::image, "xmark.circle.fill"},
                        Case{kTint, "26.0", Kind::image, "xmark"}}) {
    SCOPED_TRACE(c.systemVersion);
    configure([&](Configuration& config) { config.closeButtonTintColor = c.tint; });
    platform.ui.systemVersion = c.systemVersion;
    const auto sheet = present(checkout, platform.ui.createScreen(), delegate);
    const auto& item = fakeScreen(page(sheet).screen()).rightBarButtonItem;
    ASSERT_TRUE(item.has_value());
    EXPECT_EQ(item->kind, c.kind);
    EXPECT_EQ(item->systemImageName, c.image);
    EXPECT_EQ(item->tintColor, c.tint);
  }
}

TEST_F(CheckoutPresentationTest, ClosingCancelsAndKeepsOnlyAPageTheHostPreloaded) {
  struct Case {
    bool hostPreloaded;
    bool byGesture;
  };
  for (const Case c :
       {Case{false, false}, Case{true, false}, Case{false, true}, Case{true, true}}) {
    SCOPED_TRACE(::testing::Message() << c.hostPreloaded << c.byGesture);
    resetCheckoutState();
    delegate->calls.clear();
    if (c.hostPreloaded) {
      preload(checkout);
    }
    const auto sheet = show(delegate);
    const auto shown = page(sheet).checkoutView();
    if (c.byGesture) {  // an Escape the page left unhandled
      EXPECT_TRUE(fakeScreen(sheet->screen()).pressEscape());
    } else {
      fakePlatform.presentedCheckout()->pressClose();
      // The close control leaves dismissing to the host.
      EXPECT_EQ(hostScreen()->presentedScreen(), sheet->screen());
      sheet->dismiss(false);
    }
    drain();
    EXPECT_EQ(delegate->calls, std::vector<std::string>{"cancel"});
    EXPECT_EQ(hasBridge(*shown), c.hostPreloaded);
    EXPECT_EQ(obtain() == shown, c.hostPreloaded);
  }
}

TEST_F(CheckoutPresentationTest, PageEventsReachTheHost) {
  configure([](Configuration& c) {
    c.confetti.enabled = true;
    c.confetti.particles = {platform::Image(std::make_shared<const platform::Image::Native>())};
  });
  const auto sheet = show(delegate);
  fake::FakeWebView& webView = pageView(sheet);
  const auto& container = fakeScreen(sheet->screen());
  auto shown = fakePlatform.presentedCheckout().value();

  shown.postModalToggled(true);
  // While the page shows a dialog of its own, the user's gesture leaves the sheet alone.
  EXPECT_TRUE(fakeScreen(sheet->screen()).pressEscape());
  EXPECT_FALSE(fakeScreen(sheet->screen()).userDismiss());
  shown.postModalToggled(false);
  EXPECT_EQ(container.barHiddenCalls,
            (std::vector<fake::FakeScreen::BarHiddenCall>{{true, true}, {false, true}}));

  webView.decidePolicyForNavigationAction(
      {url("mailto:help@shop.example"), platform::NavigationType::linkActivated, true});
  shown.postWebPixel(tests::pixelBody("standard"));
  shown.postCompleted("9");
  EXPECT_EQ(delegate->calls,
            (std::vector<std::string>{"link:mailto:help@shop.example", "pixel", "complete:9"}));
  EXPECT_EQ(hostScreen()->presentedScreen(), sheet->screen());  // the host dismisses
  // The confetti is thrown over the sheet's page.
  const auto layers = page(sheet).screen()->view().sublayers();
  ASSERT_EQ(layers.size(), 1U);
  EXPECT_EQ(layers[0]->name(), "checkout-confetti");
}

struct MinimalDelegate : CheckoutDelegate {
  void checkoutDidCancel() override {}
};

TEST_F(CheckoutPresentationTest, DefaultDelegateOpensOnlyOpenableLinksAndItsThrowStopsInTheKit) {
  const auto minimal = std::make_shared<MinimalDelegate>();
  const auto sheet = show(minimal);
  fake::FakeWebView& webView = pageView(sheet);
  for (const char* link : {"mailto:help@shop.example", "bankapp://pay"}) {
    webView.decidePolicyForNavigationAction({url(link), platform::NavigationType::other, true});
  }
  EXPECT_EQ(platform.application.canOpenQueries.size(), 2U);
  EXPECT_EQ(fakePlatform.openedUrls(), std::vector<std::string>{"mailto:help@shop.example"});

  // The default checkoutDidFail throws the error back into the kit, which stops it there: no
  // recovery (a 500 would be recovered from), the sheet goes, and the log names the callback.
  webView.startProvisionalNavigation();
  EXPECT_NO_THROW(webView.decidePolicyForNavigationResponse({checkout, 500, true}));
  EXPECT_FALSE(page(sheet).checkoutView()->isRecovery());
  advance(fake::kTransitionDuration);
  EXPECT_EQ(hostScreen()->presentedScreen(), nullptr);
  EXPECT_EQ(countLog("(Error) - checkoutDidFail threw the CheckoutError it was given"), 1U);
}

TEST_F(CheckoutPresentationTest, PresentNeedsADisplayAndAScreenToPresentFrom) {
  EXPECT_EQ(present(checkout, nullptr, delegate), nullptr);
  platform.displayAvailable = false;
  EXPECT_EQ(present(checkout, hostScreen(), delegate), nullptr);
  EXPECT_EQ(CheckoutSheet(checkout).viewController(), nullptr);
  EXPECT_EQ(countLog("(Error) - No screen to present checkout from: "), 1U);
  EXPECT_EQ(countLog("(Error) - No user interface: cannot present checkout "), 1U);
  EXPECT_TRUE(platform.ui.webViews.empty());
}

TEST_F(CheckoutPresentationTest, ASheetsCallbacksTakeEffectWhenSetAfterItsControllerIsMade) {
  std::vector<std::string> calls;
  std::shared_ptr<CheckoutViewController> controller;
  std::weak_ptr<CheckoutDelegateWrapper> wrapper;
  {
    const CheckoutSheet sheet = CheckoutSheet(checkout).onComplete(
        [&](const CheckoutCompletedEvent&) { calls.push_back("complete"); });
    controller = sheet.viewController();
    ASSERT_NE(controller, nullptr);
    const CheckoutSheet copy = sheet.onCancel([&] { calls.push_back("cancel"); });
    EXPECT_EQ(copy.viewController(), controller);
    EXPECT_EQ(page(controller).delegate(), sheet.delegate());
    wrapper = sheet.delegate();
  }
  // Every copy of the sheet is gone; its controller keeps the callbacks.
  EXPECT_FALSE(wrapper.expired());
  hostScreen()->presentScreen(platform::Screen::of(controller->screen()), true, {});
  drain();
  fakePlatform.presentedCheckout()->pressClose();
  EXPECT_EQ(calls, std::vector<std::string>{"cancel"});

  // Without onLinkClick a link opens outside the application.
  pageView(controller)
      .decidePolicyForNavigationAction(
          {url("https://help.example/?open_externally=1"), platform::NavigationType::other, true});
  EXPECT_EQ(fakePlatform.openedUrls(), std::vector<std::string>{"https://help.example/"});
}

TEST_F(CheckoutPresentationTest, EachPresentationOfASheetIsAFreshOne) {
  const CheckoutSheet sheet(checkout);
  const auto first = sheet.present(hostScreen());
  drain();
  EXPECT_EQ(sheet.viewController(), first);  // still on screen
  loadPage(pageView(first), 500);            // recovers: a bridgeless view, recovery spent
  ASSERT_TRUE(page(first).checkoutView()->isRecovery());
  first->dismiss(true);
  advance(fake::kTransitionDuration);
  const auto second = sheet.present(hostScreen());
  drain();
  ASSERT_NE(second, nullptr);
  EXPECT_NE(second, first);
  EXPECT_EQ(hostScreen()->presentedScreen(), second->screen());
  EXPECT_EQ(page(second).delegate(), sheet.delegate());
  EXPECT_EQ(page(second).checkoutViewDidFailWithErrorCount(), 0);
  EXPECT_TRUE(page(second).checkoutView()->isBridgeAttached());
}

}  // namespace
}  // namespace vemba::checkout
