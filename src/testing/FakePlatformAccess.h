// The implementation's side of the public testing API (vemba/testing/): the states behind its
// handles, and the way in for the library's own tests, which reach the fake backend beneath a
// testing::FakePlatform to check what no host can see.
//
// Contract: the test's thread only, like the API itself.
#pragma once

#include <deque>
#include <memory>
#include <variant>

#include "FakePlatform.h"
#include "FakeScreen.h"
#include "FakeWebView.h"
#include "vemba/testing/FakePlatform.h"

namespace vemba::ads {
class VembaWebViewController;
}
namespace vemba::checkout {
class CheckoutViewController;
class CheckoutViewControllerImpl;
class CheckoutWebViewController;
}  // namespace vemba::checkout

namespace vemba::testing {

struct FakePlatform::State {
  struct Response {
    long status = 0;
    std::string body;
  };
  struct TransportFailure {
    int code = 0;
  };
  using Answer = std::variant<Response, TransportFailure>;

  fake::InstalledFakePlatform backend;
  std::shared_ptr<fake::FakeScreen> hostScreen;
  std::deque<Answer> answers;           // scripted, not yet given to a request
  std::deque<std::size_t> waitingBids;  // bid requests sent, not yet given an answer
};

struct PresentedAd::State {
  std::weak_ptr<ads::VembaWebViewController> controller;
  // The page may outlive its screen for a moment, as a real one does: its late words reach nobody.
  std::shared_ptr<fake::FakeWebView> page;
};

struct PresentedCheckout::State {
  std::weak_ptr<checkout::CheckoutViewControllerImpl> sheet;
  std::string url;  // the checkout URL the sheet was made for
};

FakePlatform::State& stateOf(FakePlatform& platform);

// The fake backend beneath `platform`.
inline fake::FakePlatform& backendOf(FakePlatform& platform) {
  return stateOf(platform).backend;
}

// The controller of the checkout page inside `sheet`.
checkout::CheckoutWebViewController& sheetPage(const checkout::CheckoutViewController& sheet);

// Plays one main-frame load of the web view's current URL, its document answered with `status`:
// the navigation starts, the response is decided on and, unless it is cancelled (then the
// navigation fails as interrupted), progress reaches 1 and the navigation finishes.
void playPageLoad(fake::FakeWebView& webView, long status = 200);

}  // namespace vemba::testing
