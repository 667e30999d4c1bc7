#include "platform/Services.h"

#include <atomic>

#include "platform/ScopedServices.h"

namespace vemba::platform {
namespace {
std::atomic<const Services*> gOverride{nullptr};
}  // namespace

const Services& services() {
  const Services* installed = gOverride.load(std::memory_order_acquire);
  return installed != nullptr ? *installed : defaultServices();
}

Ui* ui() {
  const Services& current = services();
  return current.ui ? current.ui() : nullptr;
}

Ui* uiIfStarted() {
  const Services& current = services();
  return current.uiStarted && current.uiStarted() ? ui() : nullptr;
}

Application* application() {
  const Services& current = services();
  return current.application ? current.application() : nullptr;
}

ScopedServices::ScopedServices(const Services& installed)
    : previous_(gOverride.exchange(&installed, std::memory_order_acq_rel)) {}

ScopedServices::~ScopedServices() {
  gOverride.store(previous_, std::memory_order_release);
}

}  // namespace vemba::platform
