// The host application as GTK shows it (platform::Application): its toplevel windows, the
// active one as the key window (with none active, the most recently active one: a phone's key
// window stays key while its application is in the background), no scenes, and URLs handed out
// through the one replaceable opener. Made once by gtkApplication(); main thread only.
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
  // With a host opener installed, true for every URL (the opener decides); otherwise true for
  // the schemes of platform::isOpenableScheme.
  bool canOpenURL(const Url& url) const override;
  // Hands the URL to the host's opener, or, without one, launches an allowed URL with the
  // desktop's handler (asynchronously, parented to the key window) and ignores anything else
  // with a log line.
  void open(const Url& url) override;
};

// Starts watching which toplevel is active, for every toplevel present and future; once per
// process (later calls do nothing). GTK must be initialised.
void watchWindowActivations();

// The process's host application; null when GTK cannot be initialised. The first call starts
// watching which toplevel is active.
platform::Application* gtkApplication();

}  // namespace vemba::linux_platform
