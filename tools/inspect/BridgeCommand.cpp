// vemba-inspect bridge: decodes script-message bodies read from standard input, one JSON value
// per line (a JSON string is a string body as the page posts it; any other value stands for a
// non-string body), and prints one JSON line per message: the decoded event or the decoding
// failure, with the CheckoutError the web view would report for it. Log lines go to standard
// error, filtered by --log-level (default "error"). The page's two contract violations end the
// process as they do in the library.
#include <cstdio>
#include <iostream>
#include <nlohmann/json.hpp>
#include <string>

#include "Commands.h"
#include "Inspection.h"
#include "Options.h"
#include "vemba/checkout/Checkout.h"

namespace vemba::inspect {
namespace {

constexpr int kExitBadInput = 1;

}  // namespace

int runBridge(const Args& args) {
  const std::optional<Options> options = Options::parse(args, {"--log-level"}, {});
  if (!options) {
    return kExitUsage;
  }
  checkout::LogLevel level = checkout::LogLevel::error;
  if (const std::optional<std::string> raw = options->value("--log-level")) {
    const std::optional<checkout::LogLevel> parsed = checkout::logLevelFrom(*raw);
    if (!parsed) {
      std::fprintf(stderr, "vemba-inspect: unknown log level '%s'\n", raw->c_str());
      return kExitUsage;
    }
    level = *parsed;
  }
  checkout::configure([level](checkout::Configuration& c) { c.logLevel = level; });

  int status = 0;
  std::string text;
  std::size_t lineNumber = 0;
  while (std::getline(std::cin, text)) {
    ++lineNumber;
    if (text.find_first_not_of(" \t\r") == std::string::npos) {
      continue;
    }
    const nlohmann::json value = nlohmann::json::parse(text, nullptr, /*allow_exceptions=*/false);
    if (value.is_discarded()) {
      std::fprintf(stderr, "vemba-inspect: line %zu is not a JSON value\n", lineNumber);
      status = kExitBadInput;
      continue;
    }
    printLine(value.is_string() ? inspection::decodeCheckoutMessage(value.get<std::string>(), {})
                                : inspection::decodeCheckoutMessage(std::nullopt, value.dump()));
  }
  return status;
}

}  // namespace vemba::inspect
