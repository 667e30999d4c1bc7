#include "WebTestSupport.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <stdexcept>

#include "GtkViewBase.h"
#include "WebViewFactory.h"
#include "vemba/linux/WebViews.h"

namespace vemba::testing {
namespace {

std::string codeText(const platform::NavigationError& error) {
  return error.domain + " " + std::to_string(error.code);
}

std::string typeText(platform::NavigationType type) {
  switch (type) {
    case platform::NavigationType::linkActivated:
      return "link";
    case platform::NavigationType::formSubmitted:
      return "form";
    case platform::NavigationType::backForward:
      return "back-forward";
    case platform::NavigationType::reload:
      return "reload";
    case platform::NavigationType::formResubmitted:
      return "form-again";
    case platform::NavigationType::other:
      break;
  }
  return "other";
}

int boundLoopbackSocket() {
  const int fd = socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  address.sin_port = 0;
  if (fd < 0 || bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) {
    throw std::runtime_error("cannot bind a loopback socket");
  }
  return fd;
}

int portOf(int fd) {
  sockaddr_in address{};
  socklen_t length = sizeof address;
  getsockname(fd, reinterpret_cast<sockaddr*>(&address), &length);
  return ntohs(address.sin_port);
}

}  // namespace

bool displayAvailable() {
  static const bool available = gtk_init_check() != FALSE;
  return available;
}

bool spinUntil(const std::function<bool()>& done, std::chrono::milliseconds timeout) {
  const auto deadline = std::chrono::steady_clock::now() + timeout;
  while (!done() && std::chrono::steady_clock::now() < deadline) {
    // A guard wakes the loop up so the deadline is seen even when nothing happens.
    GSource* guard = g_timeout_source_new(50);
    g_source_set_callback(
        guard, [](gpointer) { return G_SOURCE_REMOVE; }, nullptr, nullptr);
    g_source_attach(guard, nullptr);
    g_main_context_iteration(nullptr, TRUE);
    g_source_destroy(guard);
    g_source_unref(guard);
  }
  return done();
}

void spinFor(std::chrono::milliseconds duration) {
  spinUntil([] { return false; }, duration);
}

platform::NavigationActionPolicy RecordingNavigationDelegate::decidePolicyForNavigationAction(
    platform::WebView& /*webView*/, const platform::NavigationAction& action) {
  events.push_back("action " + (action.url ? action.url->absoluteString() : "-") + " " +
                   typeText(action.navigationType) + " " +
                   (action.hasTargetFrame ? "target" : "no-target"));
  return cancelAction && cancelAction(action) ? platform::NavigationActionPolicy::cancel
                                              : platform::NavigationActionPolicy::allow;
}

platform::NavigationResponsePolicy RecordingNavigationDelegate::decidePolicyForNavigationResponse(
    platform::WebView& /*webView*/, const platform::NavigationResponse& response) {
  events.push_back("response " +
                   (response.statusCode ? std::to_string(*response.statusCode) : "-") + " " +
                   (response.isForMainFrame ? "main" : "sub"));
  return cancelResponse && cancelResponse(response) ? platform::NavigationResponsePolicy::cancel
                                                    : platform::NavigationResponsePolicy::allow;
}

void RecordingNavigationDelegate::didStartProvisionalNavigation(platform::WebView& /*webView*/) {
  events.emplace_back("start");
}

void RecordingNavigationDelegate::didFailProvisionalNavigation(
    platform::WebView& /*webView*/, const platform::NavigationError& error) {
  events.push_back("fail-provisional " + codeText(error));
  errors.push_back(error);
  ++ends;
  if (onEnd) {
    onEnd();
  }
}

void RecordingNavigationDelegate::didFinishNavigation(platform::WebView& /*webView*/) {
  events.emplace_back("finish");
  ++ends;
  if (onEnd) {
    onEnd();
  }
}

void RecordingNavigationDelegate::didFailNavigation(platform::WebView& /*webView*/,
                                                    const platform::NavigationError& error) {
  events.push_back("fail " + codeText(error));
  errors.push_back(error);
  ++ends;
  if (onEnd) {
    onEnd();
  }
}

void RecordingMessageHandler::userContentControllerDidReceive(
    platform::UserContentController& /*controller*/, const platform::ScriptMessage& message) {
  messages.push_back(message);
}

TestWindow::TestWindow(platform::View& view) : window_(gtk_window_new()) {
  g_object_ref_sink(window_);
  gtk_window_set_default_size(GTK_WINDOW(window_), 480, 640);
  GtkWidget* widget = linux_platform::gtkWidgetOf(view);
  gtk_widget_set_hexpand(widget, TRUE);
  gtk_widget_set_vexpand(widget, TRUE);
  gtk_window_set_child(GTK_WINDOW(window_), widget);
  gtk_window_present(GTK_WINDOW(window_));
}

TestWindow::~TestWindow() {
  gtk_window_set_child(GTK_WINDOW(window_), nullptr);
  gtk_window_destroy(GTK_WINDOW(window_));
  g_object_unref(window_);
}

bool TestWindow::saveAsPng(const std::string& path) {
  GdkPaintable* paintable = gtk_widget_paintable_new(window_);
  bool invalidated = false;
  const gulong id = g_signal_connect(
      paintable, "invalidate-contents",
      G_CALLBACK(+[](GdkPaintable*, gpointer flag) { *static_cast<bool*>(flag) = true; }),
      &invalidated);
  gtk_widget_queue_draw(window_);
  spinUntil([&] { return invalidated; }, std::chrono::seconds(5));
  g_signal_handler_disconnect(paintable, id);
  const int width = gtk_widget_get_width(window_);
  const int height = gtk_widget_get_height(window_);
  bool saved = false;
  if (width > 0 && height > 0) {
    GtkSnapshot* snapshot = gtk_snapshot_new();
    gdk_paintable_snapshot(paintable, snapshot, width, height);
    GskRenderNode* node = gtk_snapshot_free_to_node(snapshot);
    GskRenderer* renderer = gtk_native_get_renderer(GTK_NATIVE(window_));
    if (node != nullptr && renderer != nullptr) {
      GdkTexture* texture = gsk_renderer_render_texture(renderer, node, nullptr);
      saved = gdk_texture_save_to_png(texture, path.c_str()) != FALSE;
      g_object_unref(texture);
    }
    if (node != nullptr) {
      gsk_render_node_unref(node);
    }
  }
  g_object_unref(paintable);
  return saved;
}

SilentPort::SilentPort() : fd_(boundLoopbackSocket()), port_(portOf(fd_)) {
  listen(fd_, 16);
}

SilentPort::~SilentPort() {
  close(fd_);
}

int closedPort() {
  const int fd = boundLoopbackSocket();
  const int port = portOf(fd);
  close(fd);
  return port;
}

TestWebView makeWebView(std::optional<std::string> applicationName) {
  setEphemeralWebViews(true);
  TestWebView made;
  made.controller = linux_platform::createUserContentController();
  platform::WebViewConfiguration configuration;
  configuration.userContentController = made.controller;
  configuration.applicationNameForUserAgent = std::move(applicationName);
  made.view = linux_platform::createWebView(platform::Rect{}, configuration);
  made.delegate = std::make_shared<RecordingNavigationDelegate>();
  made.view->setNavigationDelegate(made.delegate);
  return made;
}

platform::WebRequest requestFor(const std::string& url, std::chrono::milliseconds timeout) {
  const std::optional<Url> parsed = Url::parse(url);
  if (!parsed) {
    throw std::invalid_argument("not a URL: " + url);
  }
  platform::WebRequest request{*parsed, {}, platform::CachePolicy::useProtocolCachePolicy, timeout};
  return request;
}

std::vector<int> descendantProcesses(const std::string& prefix) {
  // Parent of every process, then a walk down from this one.
  std::multimap<int, int> children;
  std::map<int, std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
    const std::string name = entry.path().filename();
    if (name.find_first_not_of("0123456789") != std::string::npos) {
      continue;
    }
    std::ifstream stat(entry.path() / "stat");
    std::string line;
    if (!std::getline(stat, line)) {
      continue;
    }
    // pid (comm) state ppid ...: comm may hold spaces, so read from the last ')'.
    const auto open = line.find('(');
    const auto close = line.rfind(')');
    if (open == std::string::npos || close == std::string::npos) {
      continue;
    }
    const int pid = std::stoi(name);
    names[pid] = line.substr(open + 1, close - open - 1);
    int ppid = 0;
    char state = 0;
    std::istringstream rest(line.substr(close + 2));
    rest >> state >> ppid;
    children.emplace(ppid, pid);
  }
  std::vector<int> found;
  std::vector<int> pending{static_cast<int>(getpid())};
  while (!pending.empty()) {
    const int parent = pending.back();
    pending.pop_back();
    const auto [first, last] = children.equal_range(parent);
    for (auto it = first; it != last; ++it) {
      pending.push_back(it->second);
      if (names[it->second].rfind(prefix, 0) == 0) {
        found.push_back(it->second);
      }
    }
  }
  return found;
}

}  // namespace vemba::testing
