// Hears the ad's screen on behalf of one ad: forwards close and click to the ad while it exists,
// and drops them once it is gone. Owned by the ad (the screen holds it weakly); main thread only.
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
    if (const std::shared_ptr<Ad> ad = ad_.lock()) {
      AdAccess::screenDidClose(*ad, controller);
    }
  }
  void webViewControllerDidClick(VembaWebViewController& /*controller*/) override {
    if (const std::shared_ptr<Ad> ad = ad_.lock()) {
      AdAccess::screenDidClick(*ad);
    }
  }

 private:
  std::weak_ptr<Ad> ad_;
};

}  // namespace vemba::ads
