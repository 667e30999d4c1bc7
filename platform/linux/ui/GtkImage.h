// The GTK backend's native image: a GdkTexture, with the cairo surface the emitter draws it with
// (made once, on first use). Immutable once made; main thread only.
#pragma once

#include "vemba/platform/Image.h"

using GdkTexture = struct _GdkTexture;
using cairo_surface_t = struct _cairo_surface;

namespace vemba::linux_platform {

class TextureImage final : public platform::Image::Native {
 public:
  // Takes a reference on `texture`.
  explicit TextureImage(GdkTexture* texture);
  ~TextureImage() override;
  TextureImage(const TextureImage&) = delete;
  TextureImage& operator=(const TextureImage&) = delete;

  GdkTexture* texture() const { return texture_; }
  int width() const;
  int height() const;
  // A premultiplied ARGB32 copy of the texture's pixels.
  cairo_surface_t* surface() const;

  // The texture image behind `image`; null when it holds none or another kind.
  static const TextureImage* of(const platform::Image& image);

 private:
  GdkTexture* texture_;
  mutable cairo_surface_t* surface_ = nullptr;
};

}  // namespace vemba::linux_platform
