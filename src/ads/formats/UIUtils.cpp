#include "ads/formats/UIUtils.h"

#include <utility>

#include "platform/Application.h"
#include "platform/Screen.h"
#include "platform/Services.h"

namespace vemba::ads {
namespace {

std::shared_ptr<platform::Window> firstKeyWindow(
    const std::vector<std::shared_ptr<platform::Window>>& windows) {
  for (const std::shared_ptr<platform::Window>& window : windows) {
    if (window && window->isKeyWindow()) {
      return window;
    }
  }
  return nullptr;
}

}  // namespace

std::shared_ptr<platform::Screen> UIUtils::getTopViewController(
    std::shared_ptr<platform::Screen> base) {
  if (!base) {
    const std::shared_ptr<platform::Window> keyWindow = getKeyWindow();
    if (!keyWindow) {
      return nullptr;
    }
    base = keyWindow->rootScreen();
    if (!base) {
      return nullptr;
    }
  }
  switch (base->kind()) {
    case platform::Screen::Kind::navigation:
      // An absent visible screen restarts the search from the key window's root.
      return getTopViewController(base->visibleScreen());
    case platform::Screen::Kind::tab:
      if (std::shared_ptr<platform::Screen> selected = base->selectedScreen()) {
        return getTopViewController(std::move(selected));
      }
      break;
    case platform::Screen::Kind::plain:
      break;
  }
  if (std::shared_ptr<platform::Screen> presented = base->presentedScreen()) {
    return getTopViewController(std::move(presented));
  }
  return base;
}

std::shared_ptr<platform::Window> UIUtils::getKeyWindow() {
  platform::Application* application = platform::application();
  if (application == nullptr) {
    return nullptr;
  }
  for (const platform::Scene& scene : application->connectedScenes()) {
    if (scene.activationState == platform::Scene::ActivationState::foregroundActive &&
        scene.isWindowScene) {
      // Only the first active window scene is looked at; without a key window there, the
      // application's window list decides.
      if (std::shared_ptr<platform::Window> window = firstKeyWindow(scene.windows)) {
        return window;
      }
      break;
    }
  }
  return firstKeyWindow(application->windows());
}

}  // namespace vemba::ads
