// The demo's event log: one line per delegate call of both halves, per reward and per request the
// local exchange records, each with the time it arrived. Shown in the window and, in the scripted
// session, also printed to standard output. Main thread only; owned by the demo window.
#pragma once

#include <gtk/gtk.h>

#include <chrono>
#include <string>
#include <string_view>

namespace vemba::demo {

class EventLog {
 public:
  explicit EventLog(bool echoToStdout);
  EventLog(const EventLog&) = delete;
  EventLog& operator=(const EventLog&) = delete;

  // The scrolling view to put into the window.
  GtkWidget* widget() const { return scroller_; }

  // Appends "HH:MM:SS.mmm  source  text" and scrolls to it.
  void add(std::string_view source, std::string_view text);

 private:
  GtkWidget* scroller_;
  GtkTextBuffer* buffer_;
  bool echo_;
};

}  // namespace vemba::demo
