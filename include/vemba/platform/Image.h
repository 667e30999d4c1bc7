// An image as the core carries it: an opaque, shared handle to the backend's own image object.
// The core never looks inside; a backend creates handles from its native images and unwraps
// them when drawing. Value type (copies share the image); thread-safe to copy.
#pragma once

#include <memory>
#include <utility>

#include "vemba/Export.h"

namespace vemba::platform {

class VEMBA_EXPORT Image {
 public:
  // The backend's image object derives from this.
  class Native {
   public:
    virtual ~Native() = default;
  };

  Image() = default;  // no image
  explicit Image(std::shared_ptr<const Native> native) : native_(std::move(native)) {}

  const Native* native() const { return native_.get(); }
  explicit operator bool() const { return native_ != nullptr; }

  // Two handles are equal when they share the same image object.
  friend bool operator==(const Image& a, const Image& b) { return a.native_ == b.native_; }

 private:
  std::shared_ptr<const Native> native_;
};

}  // namespace vemba::platform
