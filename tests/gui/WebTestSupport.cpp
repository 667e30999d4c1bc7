#include "WebTestSupport.h"

#include <sstream>
#include <stdexcept>

#include "GtkViewBase.h"
#include "WebViewFactory.h"
#include "vemba/linux/WebViews.h"

namespace vemba::tests {

std::string RecordingNavigationDelegate::typeText(platform::NavigationType type) {
  // The types' names, in their order of declaration.
  std::istringstream names("link form back-forward reload form-again other");
  std::string name;
  for (int i = 0; i <= static_cast<int>(type); ++i) {
    names >> name;
  }
  return name;
}

bool displayAvailable() {
  static const bool available = gtk_init_check() != FALSE;
  return available;
}

void WindowCloser::operator()(GtkWindow* window) const {
  gtk_window_set_child(window, nullptr);
  gtk_window_destroy(window);
  g_object_unref(window);
}

TestWebView makeWebView() {
  setEphemeralWebViews(true);
  TestWebView made;
  made.controller = linux_platform::createUserContentController();
  platform::WebViewConfiguration configuration;
  configuration.userContentController = made.controller;
  made.view = linux_platform::createWebView(platform::Rect{}, configuration);
  made.delegate = std::make_shared<RecordingNavigationDelegate>();
  made.view->setNavigationDelegate(made.delegate);
  made.window.reset(GTK_WINDOW(g_object_ref_sink(gtk_window_new())));
  gtk_window_set_default_size(made.window.get(), 480, 640);
  GtkWidget* widget = linux_platform::gtkWidgetOf(*made.view);
  gtk_widget_set_hexpand(widget, TRUE);
  gtk_widget_set_vexpand(widget, TRUE);
  gtk_window_set_child(made.window.get(), widget);
  gtk_window_present(made.window.get());
  return made;
}

bool TestWebView::loadAndWait(const platform::WebRequest& request) {
  const std::size_t before = delegate->ends;
  view->load(request);
  return runMainLoopUntil([&] { return delegate->ends > before; });
}

platform::WebRequest requestFor(const std::string& url, std::chrono::milliseconds timeout) {
  const std::optional<Url> parsed = Url::parse(url);
  if (!parsed) {
    throw std::invalid_argument("not a URL: " + url);
  }
  return {*parsed, {}, platform::CachePolicy::useProtocolCachePolicy, timeout};
}

}  // namespace vemba::tests
