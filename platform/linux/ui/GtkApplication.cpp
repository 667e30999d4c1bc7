#include "GtkApplication.h"

#include <gtk/gtk.h>

#include <mutex>
#include <string_view>

#include "GtkScreen.h"
#include "GtkUi.h"
#include "platform/LogSink.h"
#include "platform/OpenableSchemes.h"
#include "platform/Services.h"
#include "vemba/linux/Screens.h"

namespace vemba::linux_platform {

namespace {

constexpr std::string_view kLogSubsystem = "vemba";
constexpr std::string_view kLogCategory = "application";
constexpr std::string_view kRefusedLine = "not opening a URL whose scheme is not allowed: ";
constexpr std::string_view kLaunchFailedLine = "no application opened ";

void log(platform::LogSeverity severity, const std::string& line) {
  if (platform::LogSink* sink = platform::services().log) {
    sink->write(severity, kLogSubsystem, kLogCategory, line);
  }
}

// The default opener: the desktop's handler for the URL's scheme.
void launchWithDesktop(const std::string& url) {
  GError* error = nullptr;
  if (g_app_info_launch_default_for_uri(url.c_str(), nullptr, &error) == FALSE) {
    log(platform::LogSeverity::error, std::string(kLaunchFailedLine) + url);
    g_clear_error(&error);
  }
}

struct OpenerSlot {
  std::mutex mutex;
  UrlOpener opener;
};

OpenerSlot& openerSlot() {
  static OpenerSlot slot;
  return slot;
}

// A toplevel of this process. Holds the window weakly: a closed window is never key and has
// no root screen.
class GtkHostWindow final : public platform::Window {
 public:
  explicit GtkHostWindow(GtkWindow* window) { g_weak_ref_init(&window_, window); }
  ~GtkHostWindow() override { g_weak_ref_clear(&window_); }
  GtkHostWindow(const GtkHostWindow&) = delete;
  GtkHostWindow& operator=(const GtkHostWindow&) = delete;

  bool isKeyWindow() const override {
    GtkWindow* window = lock();
    const bool active = window != nullptr && gtk_window_is_active(window) == TRUE;
    if (window != nullptr) {
      g_object_unref(window);
    }
    return active;
  }

  std::shared_ptr<platform::Screen> rootScreen() const override {
    GtkWindow* window = lock();
    if (window == nullptr) {
      return nullptr;
    }
    auto screen = GtkScreen::forWindow(window);
    g_object_unref(window);
    return screen;
  }

 private:
  GtkWindow* lock() const {
    return static_cast<GtkWindow*>(g_weak_ref_get(const_cast<GWeakRef*>(&window_)));
  }
  GWeakRef window_{};
};

}  // namespace

std::vector<std::shared_ptr<platform::Window>> GtkHostApplication::windows() const {
  std::vector<std::shared_ptr<platform::Window>> result;
  GApplication* app = g_application_get_default();
  if (app != nullptr && GTK_IS_APPLICATION(app)) {
    // Most recently focused first.
    for (GList* item = gtk_application_get_windows(GTK_APPLICATION(app)); item != nullptr;
         item = item->next) {
      result.push_back(std::make_shared<GtkHostWindow>(GTK_WINDOW(item->data)));
    }
    return result;
  }
  GListModel* toplevels = gtk_window_get_toplevels();
  const guint count = g_list_model_get_n_items(toplevels);
  for (guint index = 0; index < count; ++index) {
    auto* window = static_cast<GtkWindow*>(g_list_model_get_item(toplevels, index));
    result.push_back(std::make_shared<GtkHostWindow>(window));
    g_object_unref(window);
  }
  return result;
}

bool GtkHostApplication::canOpenURL(const Url& url) const {
  return platform::isOpenableScheme(url.scheme());
}

void GtkHostApplication::open(const Url& url) {
  if (!platform::isOpenableScheme(url.scheme())) {
    log(platform::LogSeverity::info, std::string(kRefusedLine) + url.absoluteString());
    return;
  }
  UrlOpener opener;
  {
    const std::lock_guard lock(openerSlot().mutex);
    opener = openerSlot().opener;
  }
  if (opener) {
    opener(url.absoluteString());
  } else {
    launchWithDesktop(url.absoluteString());
  }
}

platform::Application* gtkApplication() {
  static GtkHostApplication application;
  return gtkUi() != nullptr ? &application : nullptr;
}

}  // namespace vemba::linux_platform

namespace vemba {

void setUrlOpener(UrlOpener opener) {
  auto& slot = linux_platform::openerSlot();
  const std::lock_guard lock(slot.mutex);
  slot.opener = std::move(opener);
}

std::shared_ptr<platform::Screen> screenForWindow(GtkWindow* window) {
  return linux_platform::GtkScreen::forWindow(window);
}

}  // namespace vemba
