// The seam's web view on Linux: a WebKitWebView placed like any GTK view (GtkViewBase) and
// driven by a WebViewDriver.
//
// Owner: the core, through std::shared_ptr (make it with create()); its superview holds it too
// while it is in a view tree. Its web process ends with it. Main thread only.
#pragma once

#include <memory>

#include "LiveObjects.h"
#include "WebViewDriver.h"
#include "platform/WebView.h"
#include "ui/GtkViewBase.h"

namespace vemba::linux_platform {

class GtkWebView final : public GtkViewBase<platform::WebView> {
 public:
  static std::shared_ptr<GtkWebView> create(platform::Rect frame,
                                            const platform::WebViewConfiguration& configuration);
  ~GtkWebView() override;
  GtkWebView(const GtkWebView&) = delete;
  GtkWebView& operator=(const GtkWebView&) = delete;

  // platform::WebView
  void load(const platform::WebRequest& request) override { driver_->load(request); }
  std::optional<Url> url() const override { return driver_->url(); }
  double estimatedProgress() const override { return driver_->estimatedProgress(); }
  bool isLoading() const override { return driver_->isLoading(); }
  void setNavigationDelegate(std::weak_ptr<platform::NavigationDelegate> delegate) override {
    driver_->setNavigationDelegate(std::move(delegate));
  }
  platform::UserContentController& userContentController() override {
    return driver_->userContentController();
  }
  std::unique_ptr<platform::Observation> observeUrl(
      std::function<void(const std::optional<Url>&)> observer) override {
    return driver_->observeUrl(std::move(observer));
  }
  std::unique_ptr<platform::Observation> observeEstimatedProgress(
      std::function<void(double)> observer) override {
    return driver_->observeEstimatedProgress(std::move(observer));
  }
  void setScrollEnabled(bool enabled) override { driver_->setScrollEnabled(enabled); }
  // A desktop window has no safe-area insets to adjust for: nothing to do.
  void setContentInsetAdjustmentNever() override {}
  void setAllowsBackForwardNavigationGestures(bool allows) override {
    driver_->setAllowsBackForwardNavigationGestures(allows);
  }
  // WebKitGTK does not scroll past the page's edges (no rubber-band overscroll), so there is no
  // area beyond them to colour.
  void setUnderPageBackgroundColor(platform::Color /*color*/) override {}
  void setMuted(bool muted) override { driver_->setMuted(muted); }
  void evaluateJavaScript(std::string_view script) override { driver_->evaluateJavaScript(script); }

  // The widget's background, and WebKit's own where the page draws nothing (see
  // WebViewDriver::setBackground(): an opaque view draws a page on white, as a browser does).
  void setBackgroundColor(platform::Color color) override;
  void setOpaque(bool opaque) override;

 private:
  explicit GtkWebView(std::shared_ptr<WebViewDriver> driver);

  std::shared_ptr<WebViewDriver> driver_;
  platform::Color background_ = platform::Color::rgba(1.0, 1.0, 1.0, 1.0);
  bool opaque_ = true;
  LiveCounter<GtkWebView> counted_;
};

}  // namespace vemba::linux_platform
