// Particle images for the checkout's confetti on Linux: a host makes platform::Image values from
// PNG files or GdkTextures and puts them in the checkout configuration. Thread: main thread (GTK
// must be initialised for textures).
#pragma once

#include <string>

#include "vemba/Export.h"
#include "vemba/platform/Image.h"

using GdkTexture = struct _GdkTexture;

namespace vemba {

// An image sharing `texture` (a reference is taken); no image for a null texture.
VEMBA_EXPORT platform::Image imageFromTexture(GdkTexture* texture);
// The image in the PNG (or any format GDK reads) at `path`; no image when it cannot be read.
VEMBA_EXPORT platform::Image imageFromPngFile(const std::string& path);

}  // namespace vemba
