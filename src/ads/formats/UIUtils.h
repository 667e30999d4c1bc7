// Finds the screen an ad presents from when the host gives none: the top of the key window's
// screen hierarchy. Stateless; main thread only.
#pragma once

#include <memory>

namespace vemba::platform {
class Screen;
class Window;
}  // namespace vemba::platform

namespace vemba::ads {

class UIUtils {
 public:
  UIUtils() = delete;

  // From `base`, or from the key window's root screen when `base` is absent: the visible screen
  // of a navigation container, the selected one of a tab container, the presented one of any
  // other, followed down to a screen that has none of these. A navigation container without a
  // visible screen restarts the search from the key window's root. Absent when there is no key
  // window or it has no root screen, or when that restart meets such a container again (the
  // search would otherwise never end).
  static std::shared_ptr<platform::Screen> getTopViewController(
      std::shared_ptr<platform::Screen> base = nullptr);

 private:
  static std::shared_ptr<platform::Screen> topFrom(std::shared_ptr<platform::Screen> base,
                                                   bool restarted);
  // The key window of the first foreground-active window scene, else the first key window of the
  // application's window list.
  static std::shared_ptr<platform::Window> getKeyWindow();
};

}  // namespace vemba::ads
