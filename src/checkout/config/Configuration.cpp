#include "vemba/checkout/Configuration.h"

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

std::string defaultTitle() {
  const platform::BundleInfo* bundle = platform::services().bundle;
  if (bundle == nullptr) {
    return std::string(kTitleDefault);
  }
  return bundle->localizedString(kTitleKey, kTitleDefault, kTitleTable);
}

}  // namespace

Configuration::Configuration() : title(defaultTitle()) {}

Configuration ConfigurationStore::get() const {
  const MutexLock lock(mutex_);
  if (!record_) {
    record_.emplace();
  }
  return *record_;
}

void ConfigurationStore::replace(Configuration replacement) {
  const MutexLock lock(mutex_);
  record_ = std::move(replacement);
}

}  // namespace vemba::checkout
