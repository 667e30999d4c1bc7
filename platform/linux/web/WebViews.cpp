#include "vemba/linux/WebViews.h"

#include <atomic>

namespace vemba {
namespace {

std::atomic<bool>& ephemeral() {
  static std::atomic<bool> value{false};
  return value;
}

}  // namespace

void setEphemeralWebViews(bool ephemeralViews) {
  ephemeral().store(ephemeralViews);
}

bool ephemeralWebViews() {
  return ephemeral().load();
}

}  // namespace vemba
