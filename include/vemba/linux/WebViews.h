// A setting only a Linux host has: whether web views keep anything beyond their own life.
// Thread-safe; takes effect for the web views created after the call.
#pragma once

#include "vemba/Export.h"

namespace vemba {

// With true, every web view the library creates keeps its cookies, storage and caches in memory
// for as long as it lives, as if each asked for a non-persistent data store; nothing reaches the
// user's data or cache folders. Tests, tools and demos use it. Default: false (web views that do
// not ask for a non-persistent store share WebKit's default, persistent session).
VEMBA_EXPORT void setEphemeralWebViews(bool ephemeral);
VEMBA_EXPORT bool ephemeralWebViews();

}  // namespace vemba
