// vemba-inspect: runs the library's real flows headless and prints what a host would see.
#include <cstdio>
#include <string_view>

#include "Commands.h"
#include "LogWriter.h"

namespace {

struct Subcommand {
  std::string_view name;
  int (*run)(const vemba::inspect::Args&);
  std::string_view usage;
};

constexpr Subcommand kSubcommands[] = {
    {"load", vemba::inspect::runLoad,
     "load --ad-unit ID [--format interstitial|rewarded] [--bid-floor F] "
     "[--api-key KEY | --no-initialize] [--timeout SECONDS] [PRIVACY]"},
    {"show", vemba::inspect::runShow,
     "show --ad-unit ID [--format interstitial|rewarded] [--api-key KEY] [--bid-floor F] "
     "[--close-after SECONDS] [--timeout SECONDS] [--screenshot FILE] [--show-twice] [--muted] "
     "[PRIVACY]"},
    {"request", vemba::inspect::runRequest,
     "request --ad-unit ID [--format interstitial|rewarded] [--bid-floor F] [PRIVACY]\n"
     "    PRIVACY: [--gdpr 0|1] [--tcf-consent S] [--gpp S] [--gpp-sid 2,6] [--us-privacy S]\n"
     "             [--coppa 0|1] [--lmt 0|1]"},
    {"user-agent", vemba::inspect::runUserAgent,
     "user-agent [--checkout [--recovery] [--color-scheme S] [--platform P] [--entry-point E]]"},
    {"bridge", vemba::inspect::runBridge, "bridge [--log-level all|debug|error|none]"},
    {"checkout", vemba::inspect::runCheckout,
     "checkout --url URL [--preload] [--entry-point E] [--no-delegate | --default-delegate] "
     "[--recover auto|yes|no] [--close-after SECONDS] [--linger SECONDS] [--timeout SECONDS] "
     "[--log-level LEVEL] [--screenshot FILE]"},
};

int usage() {
  std::fputs("usage: vemba-inspect <command> [options]\n", stderr);
  for (const Subcommand& command : kSubcommands) {
    std::fprintf(stderr, "  vemba-inspect %.*s\n", static_cast<int>(command.usage.size()),
                 command.usage.data());
  }
  return 2;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) {
    return usage();
  }
  vemba::inspect::installLogWriter();
  const std::string_view name = argv[1];
  const vemba::inspect::Args args(argv + 2, argv + argc);
  for (const Subcommand& command : kSubcommands) {
    if (command.name == name) {
      return command.run(args);
    }
  }
  return usage();
}
