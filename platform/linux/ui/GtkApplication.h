// The host application as GTK shows it (platform::Application): its toplevel windows, the
// active one as the key window, no scenes, and URLs handed out through the one replaceable
// opener. Made once by gtkApplication(); main thread only.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/Application.h"

namespace vemba::linux_platform {

class GtkHostApplication final : public platform::Application {
 public:
  // Linux has no scenes: always empty, so the core searches windows().
  std::vector<platform::Scene> connectedScenes() const override { return {}; }
  // The windows of the default GtkApplication when there is one, else GTK's toplevel list.
  std::vector<std::shared_ptr<platform::Window>> windows() const override;
  // True for the schemes of platform::isOpenableScheme; the opener is never asked.
  bool canOpenURL(const Url& url) const override;
  // Hands an allowed URL to the opener; anything else is ignored with a log line.
  void open(const Url& url) override;
};

// The process's host application; null when GTK cannot be initialised.
platform::Application* gtkApplication();

}  // namespace vemba::linux_platform
