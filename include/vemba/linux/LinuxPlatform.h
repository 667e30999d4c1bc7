// What only a Linux host has: the host's identity, which Linux has no application bundle to read
// from, so the host tells the library directly (every function here is thread-safe and takes
// effect for the next read), and the names under which the library logs.
#pragma once

#include <optional>
#include <string>

#include "vemba/Export.h"

namespace vemba {

// The host application's identity as bid requests report it.
// - `identifier`: the bundle identifier. When absent, the application id of the process's
//   default GApplication is used if there is one; otherwise there is none.
// - `shortVersion`: the application's short version ("2.3"). Calling this function gives the
//   application an information dictionary, holding the identifier and the short version
//   (each when present); before the first call there is no dictionary at all.
VEMBA_EXPORT void setBundleInfo(std::optional<std::string> identifier,
                                std::optional<std::string> shortVersion);

// Forgets what setBundleInfo() set: no dictionary, identifier from the GApplication only.
VEMBA_EXPORT void clearBundleInfo();

// The library logs through GLib's structured log, so a host's g_log_set_writer_func() receives
// every record, and GLib's default writer prints them as it prints any GNOME library's: debug and
// info records only when G_MESSAGES_DEBUG names their domain ("G_MESSAGES_DEBUG=Vemba"). Each
// record carries the text as MESSAGE (never a format string), GLIB_DOMAIN, PRIORITY, and the two
// fields below. Levels: the kit's debug and info lines are G_LOG_LEVEL_DEBUG and
// G_LOG_LEVEL_INFO, its errors G_LOG_LEVEL_WARNING, its faults G_LOG_LEVEL_CRITICAL.
inline constexpr const char* kLogDomain = "Vemba";  // the ad half and the shared Linux backend
inline constexpr const char* kCheckoutLogDomain = "VembaCheckoutKit";  // the checkout half
inline constexpr const char* kLogSubsystemField = "VEMBA_SUBSYSTEM";   // the writer's subsystem
inline constexpr const char* kLogCategoryField = "VEMBA_CATEGORY";     // its category within it

}  // namespace vemba
