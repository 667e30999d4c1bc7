// Hears the ad's screen on behalf of one ad: forwards close and click to the ad while it exists,
// and drops them once it is gone. One presentation has one close: after the close that began the
// dismissal of a screen, its later ones (a burst of "close" messages from the page, the button
// pressed while the screen is being dismissed) are dropped, so the reward and the dismissal come
// once per show. A close that only dismissed a screen presented over the ad does not count.
// Owned by the ad (the screen holds it weakly); main thread only.
#pragma once

#include <memory>
#include <utility>

#include "ads/bidding/AdAccess.h"
#include "ads/formats/VembaWebViewController.h"

namespace vemba::ads {

template <typename Ad>
class AdScreenListener final : public VembaWebViewControllerDelegate {
 public:
  explicit AdScreenListener(std::weak_ptr<Ad> ad) : ad_(std::move(ad)) {}

  void webViewControllerDidClose(VembaWebViewController& controller) override {
    std::weak_ptr<VembaWebViewController> closing = controller.weak_from_this();
    // The same control block (even once expired), so a new screen at a reused address is new.
    if (!closing.owner_before(closed_) && !closed_.owner_before(closing)) {
      return;
    }
    if (const std::shared_ptr<Ad> ad = ad_.lock();
        ad && AdAccess::screenDidClose(*ad, controller)) {
      closed_ = std::move(closing);
    }
  }
  void webViewControllerDidClick(VembaWebViewController& /*controller*/) override {
    if (const std::shared_ptr<Ad> ad = ad_.lock()) {
      AdAccess::screenDidClick(*ad);
    }
  }

 private:
  std::weak_ptr<Ad> ad_;
  std::weak_ptr<VembaWebViewController> closed_;  // the screen that last closed
};

}  // namespace vemba::ads
