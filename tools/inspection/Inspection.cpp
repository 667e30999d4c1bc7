#include "Inspection.h"

#include <gtk/gtk.h>

#include "platform/Screen.h"
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

bool saveWindowPng(GtkWindow* window, const std::string& path) {
  return linux_platform::saveWindowPng(window, path);
}

}  // namespace vemba::inspection
