// Handles on what the library presented on the fake platform: an ad's full-screen screen and a
// checkout sheet. A test gets one from FakePlatform::presentedAd() or presentedCheckout() and
// plays through it the page's side (its script messages) and the user's (the close controls).
//
// Contract: the test's thread only, while the FakePlatform that found the handle is installed.
// Copies share one handle. A handle keeps neither its screen nor its presentation alive: once the
// screen is gone, the page's messages reach nobody and pressClose() does nothing.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "vemba/Export.h"

namespace vemba::testing {

class FakePlatform;

// The screen of an ad being shown: the ad page (the winning bid's markup) in a web view, under
// the close button (✕). The page speaks on its "vemba" channel.
class VEMBA_EXPORT PresentedAd {
 public:
  // The URL of the ad page the screen shows.
  std::string pageUrl() const;
  // True from the start of the screen's presentation to the end of its dismissal.
  bool isOnScreen() const;

  // The page posts "close": the ad closes (a rewarded ad grants its reward) and is dismissed.
  void postClose() const;
  // The page posts "click": the ad's delegate hears adDidClick.
  void postClick() const;
  // The page posts {"action":"openURL","url":url}: the URL is opened outside the application.
  void postOpenUrl(std::string_view url) const;
  // The page posts {"action":"openCheckout","url":url}: a checkout sheet is presented over the ad.
  void postOpenCheckout(std::string_view url) const;
  // The user presses the close button.
  void pressClose() const;

  struct State;  // the implementation's

 private:
  friend class FakePlatform;
  explicit PresentedAd(std::shared_ptr<State> state) : state_(std::move(state)) {}
  std::shared_ptr<State> state_;
};

// A checkout sheet: the checkout page in a web view, under a bar with the title and the close
// control. The page speaks on the checkout bridge; each post below is delivered at once, and what
// the host's CheckoutDelegate hears follows from it as it would from a real page.
class VEMBA_EXPORT PresentedCheckout {
 public:
  // The checkout URL the sheet shows.
  std::string url() const;
  // True from the start of the sheet's presentation to the end of its dismissal.
  bool isOnScreen() const;

  // The page's document finishes loading, answered with `httpStatus`; a status of 400 or more
  // is a failure the checkout reports (and may recover from once).
  void finishLoading(int httpStatus = 200) const;

  // The page reports the order `orderId` complete ("completed", with an order of no lines).
  void postCompleted(std::string_view orderId) const;
  // The page reports an error ("error" with one record): `group` is "expired", "unrecoverable",
  // "configuration", ...; `code` is the page's code, e.g. "cart_expired".
  void postError(std::string_view group, std::string_view code, std::string_view reason = {}) const;
  // The page emits a web pixel event ("webPixels"), given as its JSON text.
  void postWebPixel(std::string_view eventJson) const;
  // The page shows or hides a dialog of its own ("checkoutBlockingEvent"); while one is shown the
  // user's dismissal gesture leaves the sheet alone.
  void postModalToggled(bool visible) const;
  // Any message: the envelope {"name":name,"body":body}, with `body` as its text.
  void postMessage(std::string_view name, std::string_view body) const;
  // The user presses the close control: the checkout is cancelled; dismissing is the host's.
  void pressClose() const;

  struct State;  // the implementation's

 private:
  friend class FakePlatform;
  explicit PresentedCheckout(std::shared_ptr<State> state) : state_(std::move(state)) {}
  std::shared_ptr<State> state_;
};

}  // namespace vemba::testing
