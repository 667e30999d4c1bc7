// The fake platform a host's unit tests run the library on: no network, no display, and a main
// queue that runs in virtual time, so a whole ad or checkout flow takes milliseconds and ends the
// same way every time.
//
// Contract: one FakePlatform at a time, made and used on the test's thread, which plays the main
// thread. Construct it before any object of the library and let it go after them (a member of the
// test fixture, or the first local of the test): it installs the fake platform for its lifetime
// and puts the library's process-wide state (initialisation, user agent, checkout configuration,
// preloaded page) back to its first-use state when it is made and when it goes, so tests do not
// see each other.
#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "vemba/Export.h"
#include "vemba/ScreenHandle.h"
#include "vemba/testing/PresentedScreens.h"

namespace vemba::testing {

// How long an animated presentation or dismissal takes in virtual time.
inline constexpr std::chrono::milliseconds kTransitionTime{300};

class VEMBA_EXPORT FakePlatform {
 public:
  FakePlatform();
  ~FakePlatform();
  FakePlatform(const FakePlatform&) = delete;
  FakePlatform& operator=(const FakePlatform&) = delete;

  // The root screen of the host's one window, which is the key window: show(hostScreen()) and
  // show() present from it alike, and so does present(checkout, hostScreen()).
  std::shared_ptr<ScreenHandle> hostScreen() const;

  // Answers to bid requests, used in order: each answers the oldest bid request still waiting,
  // or else the next one sent, on a later turn of the main queue (as a network would).
  // A 200 response with `jsonBody` (see bidResponse()).
  void respondToBid(std::string jsonBody);
  // A response with `httpStatus` and `body`.
  void respondToBid(int httpStatus, std::string body);
  // A transport failure with a URL-loading error code, e.g. -1009 (not connected) or -1001
  // (timed out); the ad's delegate hears adDidFailToLoad with that code.
  void failBid(int urlErrorCode);

  // What the library sent and opened, oldest first: the body of every bid request, the URL of
  // every billing pixel fired, and every URL opened outside the application.
  std::vector<std::string> bidRequests() const;
  std::vector<std::string> billingPixels() const;
  std::vector<std::string> openedUrls() const;

  // Runs everything due now, and what that posts for now, until nothing is due.
  void runUntilIdle();
  // Moves virtual time forward by `delta`, running each piece of work when it falls due.
  void advance(std::chrono::milliseconds delta);

  // The most recently made ad screen or checkout sheet that is presented; absent when none is.
  std::optional<PresentedAd> presentedAd() const;
  std::optional<PresentedCheckout> presentedCheckout() const;

  struct State;  // the implementation's

 private:
  friend State& stateOf(FakePlatform& platform);
  std::unique_ptr<State> state_;
};

// A bid response whose one bid wins: its markup is `adPageUrl`, its price 1.5 USD, and its
// billing URL `billingUrl` (when empty, the exchange's billing address for the bid is used).
VEMBA_EXPORT std::string bidResponse(std::string_view adPageUrl, std::string_view billingUrl = {});

}  // namespace vemba::testing
