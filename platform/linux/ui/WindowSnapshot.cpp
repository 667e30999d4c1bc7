#include "WindowSnapshot.h"

#include <gtk/gtk.h>

namespace vemba::linux_platform {

bool saveWindowPng(GtkWindow* window, const std::string& path, std::chrono::milliseconds wait) {
  GtkWidget* widget = GTK_WIDGET(window);
  if (!gtk_widget_get_realized(widget)) {
    return false;
  }
  GdkPaintable* paintable = gtk_widget_paintable_new(widget);
  // The first capture can be empty: wait for GTK to draw the current content.
  bool drawn = false;
  const gulong handler = g_signal_connect_swapped(
      paintable, "invalidate-contents", G_CALLBACK(+[](bool* flag) { *flag = true; }), &drawn);
  bool timedOut = false;
  const guint guard = g_timeout_add(
      static_cast<guint>(wait.count()),
      +[](gpointer flag) {
        *static_cast<bool*>(flag) = true;
        return G_SOURCE_REMOVE;
      },
      &timedOut);
  gtk_widget_queue_draw(widget);
  while (!drawn && !timedOut) {
    g_main_context_iteration(nullptr, TRUE);
  }
  if (!timedOut) {
    g_source_remove(guard);
  }
  g_signal_handler_disconnect(paintable, handler);

  const int width = gtk_widget_get_width(widget);
  const int height = gtk_widget_get_height(widget);
  bool saved = false;
  if (width > 0 && height > 0) {
    GtkSnapshot* snapshot = gtk_snapshot_new();
    gdk_paintable_snapshot(paintable, snapshot, width, height);
    GskRenderNode* node = gtk_snapshot_free_to_node(snapshot);
    GskRenderer* renderer = gtk_native_get_renderer(GTK_NATIVE(window));
    if (node != nullptr && renderer != nullptr) {
      GdkTexture* texture = gsk_renderer_render_texture(renderer, node, nullptr);
      saved = gdk_texture_save_to_png(texture, path.c_str()) == TRUE;
      g_object_unref(texture);
    }
    if (node != nullptr) {
      gsk_render_node_unref(node);
    }
  }
  g_object_unref(paintable);
  return saved;
}

}  // namespace vemba::linux_platform
