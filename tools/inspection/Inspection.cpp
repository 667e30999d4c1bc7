#include "Inspection.h"

#include <gtk/gtk.h>

#include "checkout/sheet/CheckoutViewControllerImpl.h"
#include "checkout/sheet/CheckoutWebViewController.h"
#include "checkout/webview/CheckoutState.h"
#include "checkout/webview/CheckoutWebView.h"
#include "platform/Screen.h"
#include "platform/Services.h"
#include "platform/View.h"
#include "platform/WebView.h"
#include "ui/GtkViewBase.h"
#include "ui/WindowSnapshot.h"

namespace vemba::inspection {
namespace {

// The views of `screen`'s root view, or of a container's visible screen's.
std::vector<std::shared_ptr<platform::View>> contentOf(
    const std::shared_ptr<ScreenHandle>& handle) {
  std::shared_ptr<platform::Screen> screen = platform::Screen::of(handle);
  if (screen && screen->kind() == platform::Screen::Kind::navigation) {
    screen = screen->visibleScreen();
  }
  if (!screen || !screen->isViewLoaded()) {
    return {};
  }
  return screen->view().subviews();
}

// The sheet's page controller (the first of its screens).
std::shared_ptr<checkout::CheckoutWebViewController> pageControllerOf(
    const checkout::CheckoutViewController& sheet) {
  const auto* impl = dynamic_cast<const checkout::CheckoutViewControllerImpl*>(&sheet);
  if (impl == nullptr) {
    return nullptr;
  }
  for (const auto& child : impl->childControllers()) {
    if (auto page = std::dynamic_pointer_cast<checkout::CheckoutWebViewController>(child)) {
      return page;
    }
  }
  return nullptr;
}

}  // namespace

std::shared_ptr<ScreenHandle> presentedOver(const std::shared_ptr<ScreenHandle>& screen) {
  const std::shared_ptr<platform::Screen> presenter = platform::Screen::of(screen);
  return presenter ? presenter->presentedScreen() : nullptr;
}

bool dismissPresentedOver(const std::shared_ptr<ScreenHandle>& screen,
                          std::function<void()> completion) {
  const std::shared_ptr<platform::Screen> presenter = platform::Screen::of(screen);
  if (!presenter || !presenter->presentedScreen()) {
    return false;
  }
  // Dismissing from a screen that presents another takes away what it presents, not itself.
  presenter->dismiss(/*animated=*/true, std::move(completion));
  return true;
}

bool pageLoaded(const std::shared_ptr<ScreenHandle>& screen) {
  const auto views = contentOf(screen);
  const auto webView =
      views.empty() ? nullptr : std::dynamic_pointer_cast<platform::WebView>(views.front());
  return webView && webView->url() && !webView->isLoading();
}

bool pressCloseButton(const std::shared_ptr<ScreenHandle>& screen) {
  const auto views = contentOf(screen);
  if (views.size() < 2) {
    return false;
  }
  gtk_widget_activate(linux_platform::gtkWidgetOf(*views[1]));
  return true;
}

bool pressCloseItem(const checkout::CheckoutViewController& sheet) {
  const auto page = pageControllerOf(sheet);
  if (!page) {
    return false;
  }
  page->closeBarButtonItem().action();
  return true;
}

bool checkoutLoaded(const checkout::CheckoutViewController* sheet) {
  std::shared_ptr<checkout::CheckoutWebView> view;
  if (sheet == nullptr) {
    view = checkout::state().cache.cachedView();
  } else if (const auto page = pageControllerOf(*sheet)) {
    view = page->checkoutView();
  }
  return view && view->checkoutDidLoad();
}

bool saveWindowPng(GtkWindow* window, const std::string& path) {
  return linux_platform::saveWindowPng(window, path);
}

bool displayAvailable() {
  return platform::ui() != nullptr;
}

}  // namespace vemba::inspection
