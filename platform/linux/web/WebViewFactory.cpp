#include "WebViewFactory.h"

#include "GtkUserContentController.h"
#include "GtkWebView.h"

namespace vemba::linux_platform {

std::shared_ptr<platform::UserContentController> createUserContentController() {
  return GtkUserContentController::create();
}

std::shared_ptr<platform::WebView> createWebView(platform::Rect frame,
                                                 const platform::WebViewConfiguration& c) {
  return GtkWebView::create(frame, c);
}

}  // namespace vemba::linux_platform
