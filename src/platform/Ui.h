// The factory of the platform's user-interface objects, with the few platform-wide values and
// services the core's screens need (animation, the media clock). Main thread only.
//
// Every object comes back owned by the caller and in its initial state: views at a zero frame,
// opaque, visible, alpha 1, no background colour, translating their autoresizing mask into
// constraints; a progress bar at progress 0; an emitter layer with no cells and birth rate 1.
#pragma once

#include <charconv>
#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Geometry.h"
#include "platform/Screen.h"
#include "platform/View.h"
#include "platform/WebView.h"

namespace vemba::platform {

// The major number of a system version ("17.4.1" is 17; 0 when it starts with no number).
inline int majorVersion(std::string_view version) {
  int major = 0;
  std::from_chars(version.data(), version.data() + version.size(), major);
  return major;
}

class Ui {
 public:
  virtual ~Ui() = default;

  // A plain screen (its root view is created on first access).
  virtual std::shared_ptr<Screen> createScreen() = 0;
  // A navigation container with `root` as its only screen, bar shown.
  virtual std::shared_ptr<Screen> createNavigationScreen(std::shared_ptr<Screen> root) = 0;

  virtual std::shared_ptr<View> createView() = 0;
  virtual std::shared_ptr<Button> createButton() = 0;
  virtual std::shared_ptr<ProgressBar> createProgressBar() = 0;
  virtual std::shared_ptr<UserContentController> createUserContentController() = 0;
  virtual std::shared_ptr<WebView> createWebView(Rect frame,
                                                 const WebViewConfiguration& configuration) = 0;
  virtual std::shared_ptr<EmitterLayer> createEmitterLayer() = 0;

  // A hint that a web view configured with usesPreparedWebView will be made soon: the backend may
  // ready what such a view needs ahead of time (at most one readied set in the whole process,
  // consumed by the next such view). It must change nothing a view, a page or the network sees.
  // `lost` runs on the main thread, at most once, when what was readied ends (its web content
  // process died) before a view took it or it was released: nothing is readied any more.
  virtual void prepareWebView(std::function<void()> /*lost*/) {}
  // What prepareWebView() readied will not be used: the backend frees it.
  virtual void releasePreparedWebView() {}

  // Activates the constraints together. Every view they name must be in one view tree.
  virtual void activate(const std::vector<LayoutConstraint>& constraints) = 0;

  // Runs `animations` now; the changes it makes to views (alpha) are animated over `duration`.
  // `completion` (may be empty) runs on a later turn of the main queue once the animation has
  // ended, with true when it ran to its end.
  virtual void animate(std::chrono::duration<double> duration, std::function<void()> animations,
                       std::function<void(bool finished)> completion) = 0;
  // The system version whose look the user interface follows ("26.0"), for the rules that change
  // with it. A phone reports its system's version; a desktop backend one fixed, documented value.
  virtual std::string userInterfaceSystemVersion() const = 0;
  // The platform's duration of a navigation bar's show or hide animation.
  virtual std::chrono::duration<double> navigationBarHideShowDuration() const = 0;
  // The media clock emitter layers run on, in seconds.
  virtual double currentMediaTime() const = 0;
};

}  // namespace vemba::platform
