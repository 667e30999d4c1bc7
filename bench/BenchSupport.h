// What the benchmarks on the real Linux backend share: a bare WebKitWebView set up as the library's
// views are where it touches loading, a watch on one view's load, and the medians and percentiles
// they print. Main thread only.
#pragma once

#include <webkit/webkit.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <string>
#include <utility>
#include <vector>

namespace vemba::bench {

using Clock = std::chrono::steady_clock;
using Millis = std::chrono::duration<double, std::milli>;

inline double median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  const std::size_t n = values.size();
  return n % 2 == 1 ? values[n / 2] : (values[n / 2 - 1] + values[n / 2]) / 2;
}

inline double percentile(std::vector<double> values, double p) {
  std::sort(values.begin(), values.end());
  return values[static_cast<std::size_t>(p * static_cast<double>(values.size() - 1))];
}

// One row: the name, then the median, p10 and p90 of `values` in milliseconds.
inline void printRow(const char* name, const std::vector<double>& values) {
  std::printf("%-44s %9.1f %9.1f %9.1f\n", name, median(values), percentile(values, 0.1),
              percentile(values, 0.9));
}

// Watches one WebKitWebView until a load of `uri` finishes without failing. A load refused for
// its certificate (then reissued by the backend once the certificate is trusted) does not count.
class LoadWatch {
 public:
  LoadWatch(WebKitWebView* view, std::string uri) : view_(view), uri_(std::move(uri)) {
    changed_ = g_signal_connect(view_, "load-changed", G_CALLBACK(onChanged), this);
    failed_ = g_signal_connect(view_, "load-failed", G_CALLBACK(onFailed), this);
    tlsFailed_ =
        g_signal_connect(view_, "load-failed-with-tls-errors", G_CALLBACK(onTlsFailed), this);
  }
  ~LoadWatch() {
    g_signal_handler_disconnect(view_, changed_);
    g_signal_handler_disconnect(view_, failed_);
    g_signal_handler_disconnect(view_, tlsFailed_);
  }
  LoadWatch(const LoadWatch&) = delete;
  LoadWatch& operator=(const LoadWatch&) = delete;

  bool finished() const { return finished_; }
  bool committed() const { return committed_; }
  Clock::time_point at() const { return at_; }
  // When the load that finished was committed (its first response bytes reached the page).
  Clock::time_point committedAt() const { return committedAt_; }

 private:
  static void onChanged(WebKitWebView* view, WebKitLoadEvent event, gpointer data) {
    auto* self = static_cast<LoadWatch*>(data);
    if (event == WEBKIT_LOAD_STARTED) {
      self->attemptFailed_ = false;
    } else if (event == WEBKIT_LOAD_COMMITTED) {
      self->committedAt_ = Clock::now();
      self->committed_ = true;
    } else if (event == WEBKIT_LOAD_FINISHED && !self->attemptFailed_ && !self->finished_) {
      const char* uri = webkit_web_view_get_uri(view);
      if (uri != nullptr && self->uri_ == uri) {
        self->finished_ = true;
        self->at_ = Clock::now();
      }
    }
  }
  static gboolean onFailed(WebKitWebView*, WebKitLoadEvent, char*, GError*, gpointer data) {
    static_cast<LoadWatch*>(data)->attemptFailed_ = true;
    return FALSE;
  }
  static gboolean onTlsFailed(WebKitWebView*, char*, GTlsCertificate*, GTlsCertificateFlags,
                              gpointer data) {
    static_cast<LoadWatch*>(data)->attemptFailed_ = true;
    return FALSE;
  }

  WebKitWebView* view_;
  std::string uri_;
  gulong changed_ = 0;
  gulong failed_ = 0;
  gulong tlsFailed_ = 0;
  bool attemptFailed_ = false;
  bool finished_ = false;
  bool committed_ = false;
  Clock::time_point at_;
  Clock::time_point committedAt_;
};

// A shown 900×760 host window whose content is one label.
inline GtkWindow* newHostWindow() {
  GtkWindow* window = GTK_WINDOW(gtk_window_new());
  gtk_window_set_default_size(window, 900, 760);
  gtk_window_set_child(window, gtk_label_new("Host window"));
  gtk_window_present(window);
  return window;
}

// A WebKitWebView with what the library's views set that touches loading: the default network
// session (or the web process of `related`), inline media, a content manager with the script
// message channel `channel`. The caller owns the returned reference.
inline WebKitWebView* newBareView(WebKitWebView* related, const char* channel) {
  WebKitSettings* settings = webkit_settings_new();
  webkit_settings_set_media_playback_allows_inline(settings, TRUE);
  WebKitUserContentManager* manager = webkit_user_content_manager_new();
  webkit_user_content_manager_register_script_message_handler(manager, channel, nullptr);
  auto* view = WEBKIT_WEB_VIEW(
      related != nullptr
          ? g_object_new(WEBKIT_TYPE_WEB_VIEW, "related-view", related, "user-content-manager",
                         manager, "settings", settings, nullptr)
          : g_object_new(WEBKIT_TYPE_WEB_VIEW, "network-session",
                         webkit_network_session_get_default(), "user-content-manager", manager,
                         "settings", settings, nullptr));
  g_object_ref_sink(view);
  g_object_unref(settings);
  g_object_unref(manager);
  return view;
}

}  // namespace vemba::bench
