// vemba-inspect user-agent --checkout: the user-agent suffix a checkout web view announces.
#include <cstdio>

#include "Commands.h"
#include "Options.h"
#include "vemba/checkout/Configuration.h"
#include "vemba/checkout/MetaData.h"
#include "vemba/checkout/UserAgent.h"

namespace vemba::inspect {
namespace {

void unknownValue(const char* option, const std::string& value) {
  std::fprintf(stderr, "vemba-inspect: unknown %s '%s'\n", option, value.c_str());
}

// Options take the raw values ("web_default", "ReactNative") or, where they differ, the case
// names ("web", "reactNative", "acceleratedCheckouts").
std::optional<checkout::UserAgent::ColorScheme> colorSchemeOption(const std::string& text) {
  if (text == "web") {
    return checkout::UserAgent::ColorScheme::web;
  }
  return checkout::colorSchemeFrom(text);
}

std::optional<checkout::MetaData::Platform> platformOption(const std::string& text) {
  if (text == "reactNative") {
    return checkout::MetaData::Platform::reactNative;
  }
  return checkout::metaDataPlatformFrom(text);
}

std::optional<checkout::MetaData::EntryPoint> entryPointOption(const std::string& text) {
  if (text == "acceleratedCheckouts") {
    return checkout::MetaData::EntryPoint::acceleratedCheckouts;
  }
  return checkout::entryPointFrom(text);
}
}  // namespace

int runCheckoutUserAgent(const Args& args) {
  const std::optional<Options> options =
      Options::parse(args, {"--color-scheme", "--platform", "--entry-point"}, {"--recovery"});
  if (!options) {
    return kExitUsage;
  }
  // Unset options take what a web view would take from the default configuration.
  const checkout::Configuration configuration = checkout::configuration();
  checkout::UserAgent::ColorScheme colorScheme = configuration.colorScheme;
  if (const std::optional<std::string> raw = options->value("--color-scheme")) {
    const auto scheme = colorSchemeOption(*raw);
    if (!scheme) {
      unknownValue("colour scheme", *raw);
      return kExitUsage;
    }
    colorScheme = *scheme;
  }
  std::optional<checkout::MetaData::Platform> platform;
  if (configuration.platform == checkout::Platform::reactNative) {
    platform = checkout::MetaData::Platform::reactNative;
  }
  if (const std::optional<std::string> raw = options->value("--platform")) {
    platform = platformOption(*raw);
    if (!platform) {
      unknownValue("platform", *raw);
      return kExitUsage;
    }
  }
  std::optional<checkout::MetaData::EntryPoint> entryPoint;
  if (const std::optional<std::string> raw = options->value("--entry-point")) {
    entryPoint = entryPointOption(*raw);
    if (!entryPoint) {
      unknownValue("entry point", *raw);
      return kExitUsage;
    }
  }
  const auto type = options->flag("--recovery") ? checkout::UserAgent::CheckoutType::recovery
                                                : checkout::UserAgent::CheckoutType::standard;
  printLine(checkout::UserAgent::string(type, colorScheme, platform, entryPoint));
  return 0;
}

}  // namespace vemba::inspect
