#include "vemba/checkout/Configuration.h"

#include <atomic>
#include <memory>
#include <string_view>
#include <utility>

#include "checkout/config/ConfigurationStore.h"
#include "common/ThreadSafety.h"
#include "platform/DeviceInfo.h"
#include "platform/Services.h"

namespace vemba::checkout {
namespace {

// The localised title: key, default value and the string table of the host's main bundle.
// (Translator's comment in the table: "The title of the checkout sheet.")
constexpr std::string_view kTitleKey = "checkout_sheet_title";
constexpr std::string_view kTitleDefault = "Checkout";
constexpr std::string_view kTitleTable = "Localizable";

Mutex gConfigurationMutex;
std::unique_ptr<Configuration> gConfiguration VEMBA_GUARDED_BY(gConfigurationMutex);
std::atomic<bool> gInvalidateOnConfigurationChange{true};
std::atomic<detail::PreloadingEnabledWriteHook> gPreloadingEnabledWriteHook{nullptr};

std::string defaultTitle() {
  const platform::BundleInfo* bundle = platform::services().bundle;
  if (bundle == nullptr) {
    return std::string(kTitleDefault);
  }
  return bundle->localizedString(kTitleKey, kTitleDefault, kTitleTable);
}

Configuration& globalLocked() VEMBA_REQUIRES(gConfigurationMutex) {
  if (!gConfiguration) {
    gConfiguration = std::make_unique<Configuration>();
  }
  return *gConfiguration;
}

}  // namespace

Configuration::Configuration() : title(defaultTitle()) {}

void Configuration::Preloading::setEnabled(bool enabled) {
  enabled_ = enabled;
  if (detail::PreloadingEnabledWriteHook hook = gPreloadingEnabledWriteHook.load()) {
    hook();
  }
}

Configuration configuration() {
  const MutexLock lock(gConfigurationMutex);
  return globalLocked();
}

namespace detail {

void replaceConfiguration(Configuration replacement) {
  const MutexLock lock(gConfigurationMutex);
  gConfiguration = std::make_unique<Configuration>(std::move(replacement));
}

void modifyConfiguration(const std::function<void(Configuration&)>& modify) {
  Configuration copy = configuration();
  modify(copy);
  replaceConfiguration(std::move(copy));
}

bool invalidateOnConfigurationChange() {
  return gInvalidateOnConfigurationChange.load();
}

void setInvalidateOnConfigurationChange(bool value) {
  gInvalidateOnConfigurationChange = value;
}

void setPreloadingEnabledWriteHook(PreloadingEnabledWriteHook hook) {
  gPreloadingEnabledWriteHook = hook;
}

void resetConfigurationForTesting() {
  std::unique_ptr<Configuration> old;
  {
    const MutexLock lock(gConfigurationMutex);
    old = std::move(gConfiguration);
  }
  gInvalidateOnConfigurationChange = true;
}

}  // namespace detail
}  // namespace vemba::checkout
