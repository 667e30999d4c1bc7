#include "InspectHost.h"

#include <gtk/gtk.h>

#include <cstdio>
#include <cstdlib>
#include <vector>

#include "Inspection.h"
#include "Options.h"
#include "vemba/linux/Screens.h"
#include "vemba/linux/WebViews.h"

namespace vemba::inspect {
namespace {

constexpr int kWindowWidth = 900;
constexpr int kWindowHeight = 760;

guint toMillis(double seconds) {
  return static_cast<guint>(seconds * 1000);
}

struct Timer {
  std::function<bool()> work;
};

}  // namespace

struct InspectHost::State {
  GtkWindow* window = nullptr;
  GMainLoop* loop = nullptr;
  std::shared_ptr<ScreenHandle> screen;
  bool quit = false;
  // Every source this host added, removed on destruction so that none outlives what it uses.
  std::vector<guint> sources;

  ~State() {
    for (const guint source : sources) {
      // Sources that already ran and returned G_SOURCE_REMOVE are gone; that is harmless.
      if (GSource* found = g_main_context_find_source_by_id(nullptr, source)) {
        g_source_destroy(found);
      }
    }
    screen.reset();
    if (window != nullptr) {
      gtk_window_destroy(window);
    }
    if (loop != nullptr) {
      g_main_loop_unref(loop);
    }
  }
};

std::unique_ptr<InspectHost> InspectHost::open(const std::string& title) {
  setenv("GTK_A11Y", "none", 0);
  // Nothing an inspected page stores may outlive the run.
  setEphemeralWebViews(true);
  if (!inspection::displayAvailable()) {
    std::fputs(
        "vemba-inspect: no display to show a window on (set DISPLAY, or run under "
        "xvfb-run -a)\n",
        stderr);
    return nullptr;
  }
  auto state = std::make_unique<State>();
  state->loop = g_main_loop_new(nullptr, FALSE);
  state->window = GTK_WINDOW(gtk_window_new());
  gtk_window_set_title(state->window, title.c_str());
  gtk_window_set_default_size(state->window, kWindowWidth, kWindowHeight);
  GtkWidget* placeholder = gtk_label_new("Host window");
  gtk_window_set_child(state->window, placeholder);
  gtk_window_present(state->window);
  state->screen = screenForWindow(state->window);
  return std::unique_ptr<InspectHost>(new InspectHost(std::move(state)));
}

InspectHost::InspectHost(std::unique_ptr<State> state) : state_(std::move(state)) {}

InspectHost::~InspectHost() = default;

std::shared_ptr<ScreenHandle> InspectHost::screen() const {
  return state_->screen;
}

bool InspectHost::snapshot(const std::string& path) const {
  if (inspection::saveWindowPng(state_->window, path)) {
    return true;
  }
  std::fprintf(stderr, "vemba-inspect: could not save a snapshot to %s\n", path.c_str());
  return false;
}

bool InspectHost::run(double seconds) {
  state_->quit = false;
  const guint guard = g_timeout_add_once(
      toMillis(seconds), [](gpointer loop) { g_main_loop_quit(static_cast<GMainLoop*>(loop)); },
      state_->loop);
  g_main_loop_run(state_->loop);
  if (state_->quit) {
    g_source_remove(guard);
  }
  return state_->quit;
}

void InspectHost::quit() {
  state_->quit = true;
  g_main_loop_quit(state_->loop);
}

void InspectHost::after(double seconds, std::function<void()> work) {
  every(seconds, [work = std::move(work)] {
    work();
    return false;
  });
}

void InspectHost::every(double seconds, std::function<bool()> work) {
  state_->sources.push_back(g_timeout_add_full(
      G_PRIORITY_DEFAULT, toMillis(seconds),
      [](gpointer data) -> gboolean {
        return static_cast<Timer*>(data)->work() ? G_SOURCE_CONTINUE : G_SOURCE_REMOVE;
      },
      new Timer{std::move(work)}, [](gpointer data) { delete static_cast<Timer*>(data); }));
}

void printOpenedUrls() {
  setUrlOpener([](const std::string& url) { printLine(nlohmann::ordered_json{{"opened", url}}); });
}

}  // namespace vemba::inspect
