#include <gtest/gtest.h>

#include "CheckoutScreenTestSupport.h"
#include "checkout/sheet/ProgressBarView.h"
#include "platform/UrlErrorCode.h"
#include "vemba/checkout/Checkout.h"

namespace vemba::checkout {
namespace {

using tests::RecordingDelegate;
using tests::url;

class CheckoutRecoveryTest : public tests::CheckoutScreenTest {
 protected:
  bool sheetGoneAfterTransition() {
    advance(vemba::testing::kTransitionTime);
    return !fakePlatform.presentedCheckout();
  }

  std::shared_ptr<RecordingDelegate> delegate = std::make_shared<RecordingDelegate>();
};

TEST_F(CheckoutRecoveryTest, OnlyAFirstFailureTheDelegateAgreesToRecoverFromIsRecovered) {
  struct Case {
    const char* name;
    const char* checkout;
    bool withDelegate;
    std::optional<bool> answer;
    long status;  // of the page, or 0: the page's web content process dies
    bool recovers;
    std::vector<std::string> calls;
  };
  const char* kPlain = "https://shop.example/checkouts/c1";
  const char* kMultipass = "https://shop.example/account/login/multipass/t";
  const std::vector<std::string> asked = {"fail:2", "shouldRecover"};
  const std::vector<Case> cases = {
      {"recoverable server error", kPlain, true, std::nullopt, 503, true, asked},
      {"final status", kPlain, true, std::nullopt, 404, false, asked},
      {"multipass sign-in", kMultipass, true, std::nullopt, 503, false, {"fail:2"}},
      {"delegate declines", kPlain, true, false, 503, false, asked},
      {"no delegate", kPlain, false, std::nullopt, 503, false, {}},
      {"the page's process dies", kPlain, true, std::nullopt, 0, true, {"fail:0", "shouldRecover"}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    resetCheckoutState();
    delegate->calls.clear();
    delegate->recover = c.answer;
    const auto sheet = show(c.withDelegate ? std::weak_ptr<CheckoutDelegate>(delegate)
                                           : std::weak_ptr<CheckoutDelegate>(),
                            url(c.checkout));
    CheckoutWebViewController& controller = page(sheet);
    const auto failed = controller.checkoutView();
    if (c.status == 0) {
      fakeOf(*failed).terminateWebContentProcess();
    } else {
      loadPage(fakeOf(*failed), c.status);
    }

    EXPECT_EQ(delegate->calls, c.calls);
    EXPECT_EQ(controller.checkoutViewDidFailWithErrorCount(), 1);
    EXPECT_EQ(controller.checkoutView() != failed, c.recovers);
    if (c.recovers) {
      const CheckoutWebView& recovery = *controller.checkoutView();
      EXPECT_TRUE(recovery.isRecovery());
      EXPECT_FALSE(hasBridge(recovery));
      EXPECT_EQ(failed->webView().superview(), nullptr);
      const auto subviews = controller.screen()->view().subviews();
      ASSERT_EQ(subviews.size(), 2U);
      EXPECT_EQ(subviews[0], recovery.webViewPtr());
      EXPECT_EQ(subviews[1], controller.progressBar().viewPtr());
      const auto& loads = fakeOf(recovery).loads;
      ASSERT_EQ(loads.size(), 1U);
      EXPECT_EQ(loads[0].url, url(c.checkout));
      EXPECT_TRUE(loads[0].headers.empty());
      EXPECT_FALSE(controller.progressBar().view().isHidden());
    }
    EXPECT_EQ(sheetGoneAfterTransition(), !c.recovers);
    hostScreen()->dismiss(false, {});
    drain();
  }
}

TEST_F(CheckoutRecoveryTest, TheRecoveryViewIsTheLastChance) {
  delegate->recover = true;
  const auto sheet = show(delegate);
  CheckoutWebViewController& controller = page(sheet);
  const auto first = controller.checkoutView();
  loadPage(fakeOf(*first), 500);
  const auto recovery = controller.checkoutView();
  ASSERT_TRUE(recovery->isRecovery());

  // Progress is followed on the shown view only.
  auto& line = dynamic_cast<fake::FakeProgressBar&>(controller.progressBar().progressBar());
  fakeOf(*first).changeEstimatedProgress(0.7);
  EXPECT_EQ(line.progress(), 0.0F);
  fakeOf(*recovery).changeEstimatedProgress(0.4);
  EXPECT_EQ(line.progress(), 0.4F);

  fakeOf(*recovery).failNavigation({std::string(platform::kUrlErrorDomain),
                                    platform::UrlErrorCode::networkConnectionLost, std::nullopt});
  // Not even asked: the second failure of a sheet always ends it.
  EXPECT_EQ(delegate->calls, (std::vector<std::string>{"fail:2", "shouldRecover", "fail:0"}));
  EXPECT_EQ(controller.checkoutViewDidFailWithErrorCount(), 2);
  EXPECT_EQ(controller.checkoutView(), recovery);
  EXPECT_FALSE(hostScreen()->presentedScreen() == nullptr);  // dismissal is animated
  EXPECT_TRUE(sheetGoneAfterTransition());
}

TEST_F(CheckoutRecoveryTest, AnErrorFromThePageDropsAndDisconnectsTheCachedPage) {
  const auto sheet = show(delegate);
  const auto shown = page(sheet).checkoutView();
  ASSERT_EQ(obtain(), shown);
  fakePlatform.presentedCheckout()->postError("expired", "cart_expired");
  EXPECT_EQ(delegate->calls, (std::vector<std::string>{"fail:3", "shouldRecover"}));
  EXPECT_FALSE(hasBridge(*shown));
  EXPECT_NE(obtain(), shown);
  EXPECT_TRUE(sheetGoneAfterTransition());
}

}  // namespace
}  // namespace vemba::checkout
