// The mark of the library's public symbols. The library is built with hidden symbols, so only
// what carries VEMBA_EXPORT is visible to a host linking the shared library; a static build
// leaves the mark on and changes nothing for the host.
#pragma once

#if defined(__GNUC__) || defined(__clang__)
#define VEMBA_EXPORT __attribute__((visibility("default")))
#else
#define VEMBA_EXPORT
#endif

// The package's compile flags name its backend: a host built against both Vemba (the Linux
// backend) and Vemba Testing (the fake one) would get two backends in one process.
#if defined(VEMBA_BACKEND_LINUX) && defined(VEMBA_BACKEND_FAKE)
#error "Vemba: link either vemba (Vemba::Vemba) or vemba-testing (Vemba::Testing), not both"
#endif
