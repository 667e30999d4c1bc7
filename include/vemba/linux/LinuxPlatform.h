// Settings only a Linux host has: Linux has no application bundle to read the host's identity
// from, and no system log the library writes to, so the host tells the library directly.
// Every function here is thread-safe and takes effect for the next read.
#pragma once

#include <optional>
#include <string>

namespace vemba {

// The host application's identity as bid requests report it.
// - `identifier`: the bundle identifier. When absent, the application id of the process's
//   default GApplication is used if there is one; otherwise there is none.
// - `shortVersion`: the application's short version ("2.3"). Calling this function gives the
//   application an information dictionary, holding the identifier and the short version
//   (each when present); before the first call there is no dictionary at all.
void setBundleInfo(std::optional<std::string> identifier, std::optional<std::string> shortVersion);

// Forgets what setBundleInfo() set: no dictionary, identifier from the GApplication only.
void clearBundleInfo();

// How the library's log lines appear on standard error.
enum class LogFormat {
  // "<severity> [<subsystem>/<category>] <line>", e.g. "error [com.example/checkout] ..."
  annotated,
  // "<line>" alone, for command-line tools that print plain lines.
  plain,
};

// Default: LogFormat::annotated.
void setLogFormat(LogFormat format);

}  // namespace vemba
