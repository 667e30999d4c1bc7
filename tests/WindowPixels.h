// What a window shows, as pixels read back from a PNG of it, for the tests on the Linux backend
// that look at what reached the screen. Main thread only.
#pragma once

#include <gtk/gtk.h>

#include <cstddef>
#include <string>
#include <vector>

#include "ui/WindowSnapshot.h"

namespace vemba::tests {

// ARGB pixels (native endian), row by row; width 0 when the window could not be drawn.
struct WindowPixels {
  std::vector<guint32> pixels;
  int width = 0;
  int height() const { return width == 0 ? 0 : static_cast<int>(pixels.size()) / width; }
  guint32 at(int x, int y) const {
    return pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                  static_cast<std::size_t>(x)];
  }
};

// Saves `window` as drawn now to the PNG `path` (left there for people to look at) and reads it.
inline WindowPixels drawnPixels(GtkWindow* window, const std::string& path) {
  WindowPixels drawn;
  GdkTexture* png = linux_platform::saveWindowPng(window, path)
                        ? gdk_texture_new_from_filename(path.c_str(), nullptr)
                        : nullptr;
  if (png == nullptr) {
    return drawn;
  }
  drawn.width = gdk_texture_get_width(png);
  drawn.pixels.resize(static_cast<std::size_t>(drawn.width) *
                      static_cast<std::size_t>(gdk_texture_get_height(png)));
  gdk_texture_download(png, reinterpret_cast<guchar*>(drawn.pixels.data()),
                       static_cast<gsize>(drawn.width) * sizeof(guint32));
  g_object_unref(png);
  return drawn;
}

}  // namespace vemba::tests
