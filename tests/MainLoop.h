// Drives GLib's default main context from the calling thread for the tests on the Linux backend:
// iterate until a condition holds (bounded, never a sleep), or for a span of wall time.
#pragma once

#include <glib.h>

#include <chrono>
#include <functional>

namespace vemba::tests {

// Iterates the default main context until `done()` holds or `limit` passes; returns `done()`.
inline bool runMainLoopUntil(const std::function<bool()>& done,
                             std::chrono::milliseconds limit = std::chrono::seconds(20)) {
  // A heartbeat brings a blocking iteration back to look at the deadline.
  const guint heartbeat = g_timeout_add(
      10, [](gpointer) -> gboolean { return G_SOURCE_CONTINUE; }, nullptr);
  const auto deadline = std::chrono::steady_clock::now() + limit;
  bool result = done();
  while (!result && std::chrono::steady_clock::now() < deadline) {
    g_main_context_iteration(nullptr, TRUE);
    result = done();
  }
  g_source_remove(heartbeat);
  return result;
}

// Iterates the default main context for `span` (lets timers and frames run, or shows that
// nothing more happens).
inline void runMainLoopFor(std::chrono::milliseconds span) {
  runMainLoopUntil([] { return false; }, span);
}

}  // namespace vemba::tests
