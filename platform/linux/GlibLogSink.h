// The log sink of the Linux backend: each write() is one record of GLib's structured log
// (g_log_structured_array), with the fields, domains and levels vemba/linux/LinuxPlatform.h
// states. Where a record goes and how it looks is the business of the process's GLib log writer:
// the host's, when it set one, else GLib's default.
//
// Domain: the checkout half's subsystem (platform::kCheckoutLogSubsystem) logs under
// kCheckoutLogDomain, every other subsystem (the ad half, the shared backend) under kLogDomain.
//
// Levels: the kit's debug and info are GLib's DEBUG and INFO, which the default writer shows only
// for domains named in G_MESSAGES_DEBUG, as the kit's own debug threshold is an opt-in for
// detail. Its error is GLib's WARNING: something failed and the kit carried on (a page that did
// not load, a host callback that threw), what GNOME libraries report as warnings and what GLib
// prints by default. G_LOG_LEVEL_ERROR is never used: GLib aborts the process after writing it.
// Its fault is GLib's CRITICAL: a broken promise of the page or the host (a contract
// violation), GLib's level for programmer errors. PRIORITY is the syslog priority GLib's own
// g_log_structured() gives each level. As for any library, a host running with
// G_DEBUG=fatal-warnings or fatal-criticals has GLib's default writer abort on these.
//
// Contract: stateless and thread-safe (GLib requires the same of its writers). The text is a
// field value, never a format string; GLib's default writer reads it as a C string, so a NUL
// byte inside it ends the text there.
#pragma once

#include <string_view>

#include "platform/LogSink.h"

namespace vemba::linux_platform {

class GlibLogSink final : public platform::LogSink {
 public:
  void write(platform::LogSeverity severity, std::string_view subsystem, std::string_view category,
             std::string_view line) override;
};

}  // namespace vemba::linux_platform
