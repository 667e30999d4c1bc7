// The mark of the library's public symbols. The library is built with hidden symbols, so only
// what carries VEMBA_EXPORT is visible to a host linking the shared library; a static build
// leaves the mark on and changes nothing for the host.
#pragma once

#if defined(__GNUC__) || defined(__clang__)
#define VEMBA_EXPORT __attribute__((visibility("default")))
#else
#define VEMBA_EXPORT
#endif
