#include "GtkWebView.h"

namespace vemba::linux_platform {

std::shared_ptr<GtkWebView> GtkWebView::create(
    platform::Rect frame, const platform::WebViewConfiguration& configuration) {
  std::shared_ptr<GtkWebView> view(new GtkWebView(WebViewDriver::create(configuration)));
  view->driver_->attach(view);
  view->setFrame(frame);
  return view;
}

GtkWebView::GtkWebView(std::shared_ptr<WebViewDriver> driver)
    : GtkViewBase<platform::WebView>(driver->widget()), driver_(std::move(driver)) {}

GtkWebView::~GtkWebView() {
  driver_->shutdown();
}

void GtkWebView::setBackgroundColor(platform::Color color) {
  GtkViewBase<platform::WebView>::setBackgroundColor(color);
  background_ = color;
  driver_->setBackground(background_, opaque_);
}

void GtkWebView::setOpaque(bool opaque) {
  GtkViewBase<platform::WebView>::setOpaque(opaque);
  opaque_ = opaque;
  driver_->setBackground(background_, opaque_);
}

}  // namespace vemba::linux_platform
