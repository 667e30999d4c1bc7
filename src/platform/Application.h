// The host application as the platform presents it: its windows and scenes (where the core looks
// for a screen to present from) and opening URLs outside the application. Main thread only.
#pragma once

#include <memory>
#include <vector>

#include "vemba/Url.h"

namespace vemba::platform {

class Screen;

class Window {
 public:
  virtual ~Window() = default;
  // True for the window that receives keyboard input.
  virtual bool isKeyWindow() const = 0;
  // The screen at the root of the window's content; absent when it has none.
  virtual std::shared_ptr<Screen> rootScreen() const = 0;
};

// A connected scene of the application and the windows it shows.
struct Scene {
  enum class ActivationState { unattached, foregroundActive, foregroundInactive, background };
  ActivationState activationState = ActivationState::unattached;
  bool isWindowScene = false;
  std::vector<std::shared_ptr<Window>> windows;
};

class Application {
 public:
  virtual ~Application() = default;
  // In the platform's own iteration order.
  virtual std::vector<Scene> connectedScenes() const = 0;
  // The application's window list, in the platform's order.
  virtual std::vector<std::shared_ptr<Window>> windows() const = 0;
  // Whether open() would hand `url` to some application.
  virtual bool canOpenURL(const Url& url) const = 0;
  // Hands `url` to the application that handles it, outside this one; no result.
  virtual void open(const Url& url) = 0;
};

}  // namespace vemba::platform
