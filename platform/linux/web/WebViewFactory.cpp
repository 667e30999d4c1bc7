// Interim: no web engine is wired in yet, so no web view can be made.
#include "WebViewFactory.h"

namespace vemba::linux_platform {

std::shared_ptr<platform::UserContentController> createUserContentController() {
  return nullptr;
}

std::shared_ptr<platform::WebView> createWebView(platform::Rect /*frame*/,
                                                 const platform::WebViewConfiguration& /*c*/) {
  return nullptr;
}

}  // namespace vemba::linux_platform
