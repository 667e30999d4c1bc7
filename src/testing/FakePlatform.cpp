#include "vemba/testing/FakePlatform.h"

#include <utility>

#include "FakePlatformAccess.h"
#include "ads/bidding/BidExchange.h"
#include "ads/bidding/BidRecordsJson.h"
#include "ads/core/VembaSDKForTesting.h"
#include "ads/formats/VembaWebViewController.h"
#include "checkout/sheet/CheckoutViewControllerImpl.h"
#include "checkout/sheet/CheckoutWebViewController.h"
#include "checkout/webview/CheckoutState.h"

namespace vemba::testing {
namespace {

static_assert(kTransitionTime == fake::kTransitionDuration,
              "the public transition time is the fake screens' own");

// What a winning bid of bidResponse() carries besides its page.
constexpr std::string_view kResponseId = "response-1";
constexpr std::string_view kBidId = "bid-1";
constexpr std::string_view kImpressionId = "1";
constexpr double kPrice = 1.5;
constexpr std::string_view kCurrency = "USD";

void resetProcessWideState() {
  ads::resetVembaSdkForTesting();
  checkout::resetCheckoutStateForTesting();
}

// The library sends two kinds of request: bids, and the billing pixels of shown ads.
bool isBidRequest(const platform::HttpRequest& request) {
  return request.url == ads::BidEndpoints::defaults().bidEndpoint;
}

// The newest screen still alive that is presented and whose controller is a `Controller`.
template <typename Controller>
std::shared_ptr<Controller> newestPresented(const fake::FakeUi& ui) {
  for (auto it = ui.screens.rbegin(); it != ui.screens.rend(); ++it) {
    const std::shared_ptr<fake::FakeScreen> screen = it->lock();
    if (screen && screen->presentingScreen() != nullptr) {
      if (auto controller = std::dynamic_pointer_cast<Controller>(screen->delegate())) {
        return controller;
      }
    }
  }
  return nullptr;
}

// Pairs scripted answers with waiting bid requests, oldest with oldest; each answer is given on
// a later turn of the main queue. A request answered otherwise (by the library's own tests, through
// the backend) no longer waits.
void answerWaitingBids(FakePlatform::State& state) {
  while (!state.answers.empty() && !state.waitingBids.empty()) {
    if (state.backend.http.task(state.waitingBids.front()).answered) {
      state.waitingBids.pop_front();
      continue;
    }
    state.backend.mainQueue.post([&http = state.backend.http, index = state.waitingBids.front(),
                                  answer = std::move(state.answers.front())] {
      if (const auto* response = std::get_if<FakePlatform::State::Response>(&answer)) {
        http.respond(index, response->status, response->body);
      } else {
        http.fail(index, std::get<FakePlatform::State::TransportFailure>(answer).code);
      }
    });
    state.answers.pop_front();
    state.waitingBids.pop_front();
  }
}

}  // namespace

FakePlatform::State& stateOf(FakePlatform& platform) {
  return *platform.state_;
}

FakePlatform::FakePlatform() : state_(std::make_unique<State>()) {
  resetProcessWideState();
  fake::FakePlatform& backend = state_->backend;
  state_->hostScreen = std::dynamic_pointer_cast<fake::FakeScreen>(backend.ui.createScreen());
  backend.application.windowList = {std::make_shared<fake::FakeWindow>(true, state_->hostScreen)};
  backend.http.onTask = [&state = *state_](std::size_t index) {
    if (isBidRequest(state.backend.http.request(index))) {
      state.waitingBids.push_back(index);
      answerWaitingBids(state);
    }
  };
}

FakePlatform::~FakePlatform() {
  resetProcessWideState();  // while the fake platform is still installed
}

std::shared_ptr<ScreenHandle> FakePlatform::hostScreen() const {
  return state_->hostScreen;
}

void FakePlatform::respondToBid(std::string jsonBody) {
  respondToBid(200, std::move(jsonBody));
}

void FakePlatform::respondToBid(int httpStatus, std::string body) {
  state_->answers.emplace_back(State::Response{httpStatus, std::move(body)});
  answerWaitingBids(*state_);
}

void FakePlatform::failBid(int urlErrorCode) {
  state_->answers.emplace_back(State::TransportFailure{urlErrorCode});
  answerWaitingBids(*state_);
}

std::vector<std::string> FakePlatform::bidRequests() const {
  std::vector<std::string> bodies;
  const fake::FakeHttpClient& http = state_->backend.http;
  for (std::size_t i = 0; i < http.taskCount(); ++i) {
    if (isBidRequest(http.request(i))) {
      bodies.push_back(http.request(i).body.value_or(""));
    }
  }
  return bodies;
}

std::vector<std::string> FakePlatform::billingPixels() const {
  std::vector<std::string> urls;
  const fake::FakeHttpClient& http = state_->backend.http;
  for (std::size_t i = 0; i < http.taskCount(); ++i) {
    if (!isBidRequest(http.request(i))) {
      urls.push_back(http.request(i).url);
    }
  }
  return urls;
}

std::vector<std::string> FakePlatform::openedUrls() const {
  std::vector<std::string> urls;
  for (const Url& url : state_->backend.application.opened) {
    urls.push_back(url.absoluteString());
  }
  return urls;
}

void FakePlatform::runUntilIdle() {
  while (state_->backend.mainQueue.runUntilIdle() > 0) {
  }
}

void FakePlatform::advance(std::chrono::milliseconds delta) {
  state_->backend.mainQueue.advance(delta);
  runUntilIdle();
}

std::optional<PresentedAd> FakePlatform::presentedAd() const {
  auto controller = newestPresented<ads::VembaWebViewController>(state_->backend.ui);
  if (!controller) {
    return std::nullopt;
  }
  auto page = std::dynamic_pointer_cast<fake::FakeWebView>(controller->webView());
  return PresentedAd(
      std::make_shared<PresentedAd::State>(PresentedAd::State{controller, std::move(page)}));
}

std::optional<PresentedCheckout> FakePlatform::presentedCheckout() const {
  auto sheet = newestPresented<checkout::CheckoutViewControllerImpl>(state_->backend.ui);
  if (!sheet) {
    return std::nullopt;
  }
  std::string url = sheetPage(*sheet).checkoutURL().absoluteString();
  return PresentedCheckout(
      std::make_shared<PresentedCheckout::State>(PresentedCheckout::State{sheet, std::move(url)}));
}

std::string bidResponse(std::string_view adPageUrl, std::string_view billingUrl) {
  ads::Bid bid;
  bid.impid = kImpressionId;
  bid.price = kPrice;
  bid.adm = std::string(adPageUrl);
  if (!billingUrl.empty()) {
    bid.burl = std::string(billingUrl);
  }
  ads::BidResponse response;
  response.id = kResponseId;
  response.bidid = std::string(kBidId);
  response.cur = std::string(kCurrency);
  response.seatbid = std::vector<ads::SeatBid>{ads::SeatBid{{std::move(bid)}}};
  // The library's own coder, so the answer has the shape the library reads.
  return ads::encode(response).dump();
}

}  // namespace vemba::testing
