#include "EventLog.h"

#include <cstdio>
#include <ctime>

namespace vemba::demo {
namespace {

// Local wall-clock time with milliseconds, as a person reads it next to the window.
std::string timestamp() {
  const auto now = std::chrono::system_clock::now();
  const std::time_t seconds = std::chrono::system_clock::to_time_t(now);
  const auto millis =
      std::chrono::duration_cast<std::chrono::milliseconds>(now.time_since_epoch()).count() % 1000;
  std::tm local{};
  localtime_r(&seconds, &local);
  char text[32];
  std::snprintf(text, sizeof text, "%02d:%02d:%02d.%03d", local.tm_hour, local.tm_min, local.tm_sec,
                static_cast<int>(millis));
  return text;
}

}  // namespace

EventLog::EventLog(bool echoToStdout) : echo_(echoToStdout) {
  GtkWidget* view = gtk_text_view_new();
  gtk_text_view_set_editable(GTK_TEXT_VIEW(view), FALSE);
  gtk_text_view_set_cursor_visible(GTK_TEXT_VIEW(view), FALSE);
  gtk_text_view_set_monospace(GTK_TEXT_VIEW(view), TRUE);
  gtk_text_view_set_wrap_mode(GTK_TEXT_VIEW(view), GTK_WRAP_WORD_CHAR);
  gtk_text_view_set_left_margin(GTK_TEXT_VIEW(view), 8);
  gtk_text_view_set_top_margin(GTK_TEXT_VIEW(view), 6);
  buffer_ = gtk_text_view_get_buffer(GTK_TEXT_VIEW(view));
  gtk_text_buffer_create_tag(buffer_, "time", "foreground", "#7a7f87", nullptr);
  gtk_text_buffer_create_tag(buffer_, "source", "weight", PANGO_WEIGHT_BOLD, nullptr);
  scroller_ = gtk_scrolled_window_new();
  gtk_scrolled_window_set_child(GTK_SCROLLED_WINDOW(scroller_), view);
  gtk_widget_set_vexpand(scroller_, TRUE);
  gtk_widget_set_hexpand(scroller_, TRUE);
}

void EventLog::add(std::string_view source, std::string_view text) {
  const std::string time = timestamp();
  GtkTextIter end;
  gtk_text_buffer_get_end_iter(buffer_, &end);
  gtk_text_buffer_insert_with_tags_by_name(buffer_, &end, time.c_str(), -1, "time", nullptr);
  gtk_text_buffer_insert(buffer_, &end, "  ", -1);
  const std::string sourceText(source);
  gtk_text_buffer_insert_with_tags_by_name(buffer_, &end, sourceText.c_str(), -1, "source",
                                           nullptr);
  const std::string line = "  " + std::string(text) + "\n";
  gtk_text_buffer_insert(buffer_, &end, line.c_str(), -1);
  GtkTextMark* mark = gtk_text_buffer_create_mark(buffer_, nullptr, &end, FALSE);
  GtkWidget* view = gtk_scrolled_window_get_child(GTK_SCROLLED_WINDOW(scroller_));
  gtk_text_view_scroll_mark_onscreen(GTK_TEXT_VIEW(view), mark);
  gtk_text_buffer_delete_mark(buffer_, mark);
  if (echo_) {
    std::printf("%s  %s%s", time.c_str(), sourceText.c_str(), line.c_str());
    std::fflush(stdout);
  }
}

}  // namespace vemba::demo
