#include "vemba/checkout/Checkout.h"

#include <string>
#include <string_view>

#include "checkout/config/OSLogger.h"
#include "checkout/sheet/CheckoutViewControllerImpl.h"
#include "checkout/webview/CheckoutState.h"
#include "checkout/webview/CheckoutWebView.h"
#include "common/MainThread.h"
#include "platform/Screen.h"
#include "platform/Services.h"

namespace vemba::checkout {
namespace {

constexpr std::string_view kNoDisplay = "No user interface: cannot present checkout ";
constexpr std::string_view kNoPresenter = "No screen to present checkout from: ";

// Run after every write of the global configuration.
void configurationDidChange() {
  if (state().configuration.invalidateOnConfigurationChange()) {
    state().cache.invalidate(/*disconnect=*/true);
  }
  OSLogger::shared().setLogLevel(configuration().logLevel);
}

}  // namespace

void setConfiguration(Configuration replacement) {
  VEMBA_ASSERT_MAIN_THREAD();
  state().configuration.replace(std::move(replacement));
  configurationDidChange();
}

void configure(const std::function<void(Configuration&)>& modify) {
  VEMBA_ASSERT_MAIN_THREAD();
  // On a copy, so that `modify` may itself read configuration().
  Configuration copy = configuration();
  modify(copy);
  state().configuration.replace(std::move(copy));
  configurationDidChange();
}

void preload(const Url& checkout) {
  VEMBA_ASSERT_MAIN_THREAD();
  if (!configuration().preloading.enabled()) {
    return;
  }
  state().cache.setPreloadingActivatedByClient(true);
  if (const std::shared_ptr<CheckoutWebView> view =
          state().cache.forCheckout(checkout, /*recovery=*/false, std::nullopt)) {
    view->load(checkout, /*isPreload=*/true);
  }
}

std::shared_ptr<CheckoutViewController> present(const Url& checkout,
                                                std::shared_ptr<ScreenHandle> from,
                                                std::weak_ptr<CheckoutDelegate> delegate) {
  return present(checkout, std::move(from), std::nullopt, std::move(delegate));
}

std::shared_ptr<CheckoutViewController> present(const Url& checkout,
                                                std::shared_ptr<ScreenHandle> from,
                                                std::optional<MetaData::EntryPoint> entryPoint,
                                                std::weak_ptr<CheckoutDelegate> delegate) {
  VEMBA_ASSERT_MAIN_THREAD();
  return detail::presentCheckout(checkout, std::move(from), [&](platform::Ui& ui) {
    return CheckoutViewControllerImpl::create(ui, checkout, std::move(delegate), entryPoint);
  });
}

std::shared_ptr<CheckoutViewController> detail::presentCheckout(
    const Url& checkout, std::shared_ptr<ScreenHandle> from,
    const std::function<std::shared_ptr<CheckoutViewController>(platform::Ui&)>& make) {
  platform::Ui* ui = platform::ui();
  if (ui == nullptr) {
    OSLogger::shared().error(std::string(kNoDisplay) + checkout.absoluteString());
    return nullptr;
  }
  const std::shared_ptr<platform::Screen> presenter = platform::Screen::of(from);
  if (!presenter) {
    OSLogger::shared().error(std::string(kNoPresenter) + checkout.absoluteString());
    return nullptr;
  }
  std::shared_ptr<CheckoutViewController> controller = make(*ui);
  if (controller) {
    presenter->presentScreen(platform::Screen::of(controller->screen()), /*animated=*/true, {});
  }
  return controller;
}

void invalidate() {
  VEMBA_ASSERT_MAIN_THREAD();
  state().cache.invalidate(/*disconnect=*/true);
}

}  // namespace vemba::checkout
