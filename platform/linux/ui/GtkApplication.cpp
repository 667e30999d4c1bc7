#include "GtkApplication.h"

#include <gtk/gtk.h>

#include <memory>
#include <optional>
#include <string_view>

#include "GtkScreen.h"
#include "GtkUi.h"
#include "common/HostCall.h"
#include "common/MainThread.h"
#include "common/ThreadSafety.h"
#include "platform/LogSink.h"
#include "platform/OpenableSchemes.h"
#include "platform/Services.h"
#include "vemba/linux/Screens.h"

namespace vemba::linux_platform {

namespace {

constexpr std::string_view kLogCategory = "application";
constexpr std::string_view kRefusedLine = "not opening a URL whose scheme is not allowed: ";
constexpr std::string_view kLaunchFailedLine = "no application opened ";
constexpr std::string_view kOpenerThrewLine = "the host's URL opener threw ";
constexpr const char* kActivationKey = "vemba-activation";
constexpr const char* kWatchedKey = "vemba-activation-watched";

void log(platform::LogSeverity severity, const std::string& line) {
  if (platform::LogSink* sink = platform::services().log) {
    sink->write(severity, platform::kLibraryLogSubsystem, kLogCategory, line);
  }
}

// --- Which window was active last ---
//
// Each toplevel carries the stamp of its latest activation (a process-wide counter), so that
// with no window focused (the application in the background) the most recently active one is
// still known.

guint64 gLastActivation = 0;

void stampIfActive(GtkWindow* window) {
  if (gtk_window_is_active(window) == TRUE) {
    g_object_set_data(G_OBJECT(window), kActivationKey,
                      reinterpret_cast<gpointer>(static_cast<guintptr>(++gLastActivation)));
  }
}

guint64 activationOf(GtkWindow* window) {
  return static_cast<guint64>(
      reinterpret_cast<guintptr>(g_object_get_data(G_OBJECT(window), kActivationKey)));
}

void watchWindow(GtkWindow* window) {
  if (g_object_get_data(G_OBJECT(window), kWatchedKey) != nullptr) {
    return;
  }
  g_object_set_data(G_OBJECT(window), kWatchedKey, window);
  g_signal_connect(window, "notify::is-active",
                   G_CALLBACK(+[](GtkWindow* changed, GParamSpec* /*spec*/, gpointer /*data*/) {
                     stampIfActive(changed);
                   }),
                   nullptr);
  stampIfActive(window);
}

void onToplevelsChanged(GListModel* toplevels, guint position, guint /*removed*/, guint added,
                        gpointer /*data*/) {
  for (guint index = position; index < position + added; ++index) {
    auto* window = static_cast<GtkWindow*>(g_list_model_get_item(toplevels, index));
    watchWindow(window);
    g_object_unref(window);
  }
}

}  // namespace

void watchWindowActivations() {
  static const bool watching = [] {
    GListModel* toplevels = gtk_window_get_toplevels();
    g_signal_connect(toplevels, "items-changed", G_CALLBACK(onToplevelsChanged), nullptr);
    onToplevelsChanged(toplevels, 0, 0, g_list_model_get_n_items(toplevels), nullptr);
    return true;
  }();
  (void)watching;
}

namespace {

// The key window: the active toplevel, else the one active most recently, else (for a
// GtkApplication, whose list GTK keeps most recently focused first) its first window.
GtkWindow* keyWindow() {
  GListModel* toplevels = gtk_window_get_toplevels();
  GtkWindow* latest = nullptr;
  guint64 latestStamp = 0;
  for (guint index = 0, count = g_list_model_get_n_items(toplevels); index < count; ++index) {
    auto* window = static_cast<GtkWindow*>(g_list_model_get_item(toplevels, index));
    g_object_unref(window);  // the list keeps it
    if (gtk_window_is_active(window) == TRUE) {
      return window;
    }
    if (activationOf(window) > latestStamp && gtk_widget_get_visible(GTK_WIDGET(window))) {
      latest = window;
      latestStamp = activationOf(window);
    }
  }
  if (latest != nullptr) {
    return latest;
  }
  GApplication* app = g_application_get_default();
  if (app != nullptr && GTK_IS_APPLICATION(app)) {
    GList* windows = gtk_application_get_windows(GTK_APPLICATION(app));
    return windows != nullptr ? GTK_WINDOW(windows->data) : nullptr;
  }
  return nullptr;
}

// The default opener: the desktop's handler for the URL, launched without waiting, with the
// key window as the parent of whatever the desktop asks.
void launchWithDesktop(const std::string& url) {
  gtk_show_uri_full(
      keyWindow(), url.c_str(), GDK_CURRENT_TIME, nullptr,
      +[](GObject* source, GAsyncResult* result, gpointer data) {
        std::unique_ptr<std::string> launched(static_cast<std::string*>(data));
        GError* error = nullptr;
        if (gtk_show_uri_full_finish(GTK_WINDOW(source), result, &error) == FALSE) {
          log(platform::LogSeverity::error, std::string(kLaunchFailedLine) + *launched);
          g_clear_error(&error);
        }
      },
      new std::string(url));
}

struct OpenerSlot {
  Mutex mutex;
  UrlOpener opener VEMBA_GUARDED_BY(mutex);
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
    const bool key = window != nullptr && window == keyWindow();
    if (window != nullptr) {
      g_object_unref(window);
    }
    return key;
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

namespace {

UrlOpener hostOpener() {
  const MutexLock lock(openerSlot().mutex);
  return openerSlot().opener;
}

}  // namespace

bool GtkHostApplication::canOpenURL(const Url& url) const {
  return hostOpener() ? true : platform::isOpenableScheme(url.scheme());
}

void GtkHostApplication::open(const Url& url) {
  const std::string& text = url.absoluteString();
  if (const UrlOpener opener = hostOpener()) {
    if (const std::optional<std::string> thrown = callHost([&] { opener(text); })) {
      log(platform::LogSeverity::error, std::string(kOpenerThrewLine) + *thrown);
    }
    return;
  }
  if (!platform::isOpenableScheme(url.scheme())) {
    log(platform::LogSeverity::info, std::string(kRefusedLine) + text);
    return;
  }
  launchWithDesktop(text);
}

platform::Application* gtkApplication() {
  static GtkHostApplication application;
  if (!startGtk()) {
    return nullptr;
  }
  watchWindowActivations();
  return &application;
}

}  // namespace vemba::linux_platform

namespace vemba {

void setUrlOpener(UrlOpener opener) {
  auto& slot = linux_platform::openerSlot();
  const MutexLock lock(slot.mutex);
  slot.opener = std::move(opener);
}

std::shared_ptr<ScreenHandle> screenForWindow(GtkWindow* window) {
  VEMBA_ASSERT_MAIN_THREAD();
  return linux_platform::GtkScreen::forWindow(window);
}

std::shared_ptr<ScreenHandle> topScreenForWindow(GtkWindow* window) {
  VEMBA_ASSERT_MAIN_THREAD();
  std::shared_ptr<platform::Screen> top = linux_platform::GtkScreen::forWindow(window);
  while (top) {
    std::shared_ptr<platform::Screen> presented = top->presentedScreen();
    if (!presented) {
      break;
    }
    top = std::move(presented);
  }
  return top;
}

}  // namespace vemba
