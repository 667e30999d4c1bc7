#include "GuiTest.h"

#include <gtk/gtk.h>

#include <cstdlib>

#include "LinuxUi.h"
#include "vemba/linux/Screens.h"

#if defined(VEMBA_GUI_TESTS_UNDER_SANITIZERS)
// Sanitizer suppressions, by named library only (defined here, in the object every GUI test
// links, so the linker keeps them; each sanitizer reads only its own).
// - LeakSanitizer: fontconfig keeps its configuration and font patterns for the life of the
//   process and frees them only in FcFini(), which GTK never calls.
// - ThreadSanitizer: GLib's mutexes and bit locks are futex-based in these uninstrumented
//   libraries, so TSan cannot see the ordering of GLib's and fontconfig's own worker threads
//   (GTask pool, GDBus, font loading) against the main thread.
// The hooks keep default visibility: the sanitizer runtime looks them up dynamically, and the
// build hides every other symbol.
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() {
  return "leak:libfontconfig.so\n";
}
extern "C" __attribute__((visibility("default"))) const char* __tsan_default_suppressions();
extern "C" const char* __tsan_default_suppressions() {
  return "race:libglib-2.0.so\nrace:libgobject-2.0.so\nrace:libfontconfig.so\n";
}
#endif

namespace vemba::gui_test {

void GuiTest::SetUp() {
  if (std::getenv("DISPLAY") == nullptr && std::getenv("WAYLAND_DISPLAY") == nullptr) {
    GTEST_SKIP() << "no display: run under xvfb-run -a";
  }
#if defined(VEMBA_GUI_TESTS_UNDER_SANITIZERS)
  g_setenv("GDK_DEBUG", "gl-disable", FALSE);  // see tests/gui/CMakeLists.txt
#endif
  for (const char* domain : {"Gtk", "GLib-GObject"}) {
    handlers_.emplace_back(
        domain, g_log_set_handler(domain, G_LOG_LEVEL_CRITICAL, failOnCritical, nullptr));
  }
  ui = linux_platform::linuxUi();
  ASSERT_NE(ui, nullptr) << "GTK could not be initialised on this display";
  window = GTK_WINDOW(gtk_window_new());
  gtk_window_set_default_size(window, kWindowWidth, kWindowHeight);
  gtk_window_present(window);
  ASSERT_TRUE(runUntil([this] { return gtk_widget_get_width(GTK_WIDGET(window)) > 0; }));
}

platform::View& GuiTest::presentFullScreen() {
  fullScreen = ui->createScreen();
  fullScreen->setModalPresentationStyle(platform::ModalPresentationStyle::fullScreen);
  bool presented = false;
  platform::Screen::of(screenForWindow(window))->presentScreen(fullScreen, false, [&] {
    presented = true;
  });
  EXPECT_TRUE(runUntil([&] { return presented; }));
  return fullScreen->view();
}

void GuiTest::TearDown() {
  if (window != nullptr) {
    gtk_window_destroy(window);
    runFor(std::chrono::milliseconds(20));
  }
  for (const auto& [domain, id] : handlers_) {
    g_log_remove_handler(domain, id);
  }
}

void GuiTest::failOnCritical(const gchar* domain, GLogLevelFlags /*level*/, const gchar* message,
                             gpointer /*unused*/) {
  ADD_FAILURE() << domain << " critical: " << message;
}

}  // namespace vemba::gui_test
