#include "LinuxUi.h"

#include <functional>
#include <memory>
#include <utility>

#include "ui/GtkUi.h"
#include "web/WebViewFactory.h"

namespace vemba::linux_platform {
namespace {

class LinuxUi final : public GtkUi {
 public:
  std::shared_ptr<platform::UserContentController> createUserContentController() override {
    return linux_platform::createUserContentController();
  }
  std::shared_ptr<platform::WebView> createWebView(
      platform::Rect frame, const platform::WebViewConfiguration& configuration) override {
    return linux_platform::createWebView(frame, configuration);
  }
  // Keeps one web process running for the next ad view (see web/WarmWebView.h).
  void prepareWebView(std::function<void()> lost) override {
    linux_platform::prepareWebView(std::move(lost));
  }
  void releasePreparedWebView() override { linux_platform::releasePreparedWebView(); }
};

}  // namespace

platform::Ui* linuxUi() {
  // Lives for the process, like GTK itself.
  static const std::unique_ptr<LinuxUi> made = startGtk() ? std::make_unique<LinuxUi>() : nullptr;
  return made.get();
}

}  // namespace vemba::linux_platform
