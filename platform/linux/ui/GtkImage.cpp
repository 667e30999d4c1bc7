#include "GtkImage.h"

#include <gtk/gtk.h>

#include "common/MainThread.h"
#include "vemba/linux/Images.h"

namespace vemba::linux_platform {

TextureImage::TextureImage(GdkTexture* texture) : texture_(texture) {
  g_object_ref(texture_);
}

TextureImage::~TextureImage() {
  if (surface_ != nullptr) {
    cairo_surface_destroy(surface_);
  }
  g_object_unref(texture_);
}

int TextureImage::width() const {
  return gdk_texture_get_width(texture_);
}
int TextureImage::height() const {
  return gdk_texture_get_height(texture_);
}

cairo_surface_t* TextureImage::surface() const {
  if (surface_ == nullptr) {
    surface_ = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width(), height());
    // GDK's default download format is cairo's ARGB32 layout (premultiplied, native endian).
    gdk_texture_download(texture_, cairo_image_surface_get_data(surface_),
                         static_cast<gsize>(cairo_image_surface_get_stride(surface_)));
    cairo_surface_mark_dirty(surface_);
  }
  return surface_;
}

const TextureImage* TextureImage::of(const platform::Image& image) {
  return dynamic_cast<const TextureImage*>(image.native());
}

}  // namespace vemba::linux_platform

namespace vemba {

platform::Image imageFromTexture(GdkTexture* texture) {
  VEMBA_ASSERT_MAIN_THREAD();
  if (texture == nullptr) {
    return {};
  }
  return platform::Image(std::make_shared<linux_platform::TextureImage>(texture));
}

platform::Image imageFromPngFile(const std::string& path) {
  VEMBA_ASSERT_MAIN_THREAD();
  GError* error = nullptr;
  GdkTexture* texture = gdk_texture_new_from_filename(path.c_str(), &error);
  if (texture == nullptr) {
    g_clear_error(&error);
    return {};
  }
  platform::Image image = imageFromTexture(texture);
  g_object_unref(texture);
  return image;
}

}  // namespace vemba
