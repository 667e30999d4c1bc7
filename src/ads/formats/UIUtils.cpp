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
  return topFrom(std::move(base), false);
}

std::shared_ptr<platform::Screen> UIUtils::topFrom(std::shared_ptr<platform::Screen> base,
                                                   bool restarted) {
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
      if (std::shared_ptr<platform::Screen> visible = base->visibleScreen()) {
        return topFrom(std::move(visible), restarted);
      }
      // An absent visible screen restarts the search from the key window's root, once.
      return restarted ? nullptr : topFrom(nullptr, true);
    case platform::Screen::Kind::tab:
      if (std::shared_ptr<platform::Screen> selected = base->selectedScreen()) {
        return topFrom(std::move(selected), restarted);
      }
      break;
    case platform::Screen::Kind::plain:
      break;
  }
  if (std::shared_ptr<platform::Screen> presented = base->presentedScreen()) {
    return topFrom(std::move(presented), restarted);
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
