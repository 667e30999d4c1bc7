#include "LiveObjects.h"

#include "ui/GtkScreen.h"
#include "web/GtkWebView.h"

namespace vemba::linux_platform {

std::size_t liveWebViewCount() {
  return LiveCounter<GtkWebView>::live();
}

std::size_t liveScreenCount() {
  return LiveCounter<GtkScreen>::live();
}

}  // namespace vemba::linux_platform
