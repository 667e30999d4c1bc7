// The navigation container that the entry points present: its root is the
// CheckoutWebViewController, which it owns, tells at once that the sheet is presented, and makes
// the delegate of the container's presentation (so the user's dismissal gesture reaches it).
//
// Owns its navigation platform::Screen and is that screen's ScreenDelegate, so a presentation
// keeps it (and through it the root controller) alive. Owner: the host and the presentation,
// through std::shared_ptr. Main thread only.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "platform/Screen.h"
#include "vemba/Url.h"
#include "vemba/checkout/CheckoutDelegate.h"
#include "vemba/checkout/CheckoutViewController.h"
#include "vemba/checkout/MetaData.h"

namespace vemba::platform {
class Ui;
}

namespace vemba::checkout {

class CheckoutWebViewController;

class CheckoutViewControllerImpl final
    : public CheckoutViewController,
      public platform::ScreenDelegate,
      public std::enable_shared_from_this<CheckoutViewControllerImpl> {
 public:
  // Null when no checkout web view can be made.
  static std::shared_ptr<CheckoutViewControllerImpl> create(
      platform::Ui& ui, const Url& checkout, std::weak_ptr<CheckoutDelegate> delegate,
      std::optional<MetaData::EntryPoint> entryPoint = std::nullopt);

  std::shared_ptr<ScreenHandle> screen() const override { return screen_; }
  const std::shared_ptr<platform::Screen>& navigationScreen() const { return screen_; }
  void dismiss(bool animated, std::function<void()> completion) override;

  // The controllers of the container's screens, root first.
  std::vector<std::shared_ptr<platform::ScreenDelegate>> childControllers() const;
  // Keeps `delegate` (a sheet's delegate wrapper) alive as long as this controller.
  void keepDelegateAlive(std::shared_ptr<CheckoutDelegate> delegate) {
    keptDelegate_ = std::move(delegate);
  }
  // It has been presented and is no longer: a presentation of its own is over.
  bool hasLeftTheScreen() const { return appeared_ && screen_->presentingScreen() == nullptr; }

  // platform::ScreenDelegate
  void viewWillAppear() override;

 private:
  CheckoutViewControllerImpl() = default;

  std::shared_ptr<CheckoutWebViewController> root_;
  std::shared_ptr<platform::Screen> screen_;
  std::shared_ptr<CheckoutDelegate> keptDelegate_;
  bool appeared_ = false;
};

namespace detail {
// What present() and CheckoutSheet::present() share: null, with an error line, without a display
// or without `from`; otherwise the controller `make` returns, presented (animated) from `from`.
std::shared_ptr<CheckoutViewController> presentCheckout(
    const Url& checkout, std::shared_ptr<ScreenHandle> from,
    const std::function<std::shared_ptr<CheckoutViewController>(platform::Ui&)>& make);
}  // namespace detail

}  // namespace vemba::checkout
