// The subcommands of vemba-inspect. Each takes the arguments after its name and returns the
// process exit status.
#pragma once

#include <string>
#include <vector>

namespace vemba::inspect {

using Args = std::vector<std::string>;

// The exit statuses the commands share.
inline constexpr int kExitUsage = 2;      // bad arguments
inline constexpr int kExitTimeout = 3;    // the awaited callback did not come in time
inline constexpr int kExitNoDisplay = 4;  // a command that opens a window has no display

int runLoad(const Args& args);       // vemba-inspect load ...
int runRequest(const Args& args);    // vemba-inspect request ...
int runUserAgent(const Args& args);  // vemba-inspect user-agent [--checkout ...]
// vemba-inspect user-agent --checkout ...: the arguments after "--checkout".
int runCheckoutUserAgent(const Args& args);
// vemba-inspect bridge [--log-level LEVEL]: decodes checkout bridge messages read from stdin.
int runBridge(const Args& args);
// vemba-inspect checkout --url URL ...: presents a checkout sheet from a host window.
int runCheckout(const Args& args);
// vemba-inspect show --ad-unit ID ...: loads an ad and shows it from a host window.
int runShow(const Args& args);

}  // namespace vemba::inspect
