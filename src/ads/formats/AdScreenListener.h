// Hears the ad's screen on behalf of one ad and forwards close and click to the ad's callbacks,
// which hold the ad weakly and drop the report once it is gone. One presentation has one close:
// after the close that began the dismissal of a screen, its later ones (a burst of "close"
// messages from the page, the button pressed while the screen is being dismissed) are dropped, so
// the reward and the dismissal come once per show. A close that only dismissed a screen presented
// over the ad does not count. Owned by the ad (the screen holds it weakly); main thread only.
#pragma once

#include <functional>
#include <memory>
#include <utility>

#include "ads/formats/VembaWebViewController.h"

namespace vemba::ads {

class AdScreenListener final : public VembaWebViewControllerDelegate {
 public:
  // True when the close began the dismissal of the ad's own screen; false when it only dismissed
  // a screen over the ad, or the ad is gone.
  using Close = std::function<bool(VembaWebViewController& controller)>;
  using Click = std::function<void()>;

  AdScreenListener(Close close, Click click) : close_(std::move(close)), click_(std::move(click)) {}

  void webViewControllerDidClose(VembaWebViewController& controller) override {
    std::weak_ptr<VembaWebViewController> closing = controller.weak_from_this();
    // The same control block (even once expired), so a new screen at a reused address is new.
    if (!closing.owner_before(closed_) && !closed_.owner_before(closing)) {
      return;
    }
    if (close_(controller)) {
      closed_ = std::move(closing);
    }
  }
  void webViewControllerDidClick(VembaWebViewController& /*controller*/) override { click_(); }

 private:
  Close close_;
  Click click_;
  std::weak_ptr<VembaWebViewController> closed_;  // the screen that last closed
};

}  // namespace vemba::ads
