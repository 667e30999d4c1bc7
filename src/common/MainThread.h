// VEMBA_ASSERT_MAIN_THREAD(): the check that code documented "main thread only" runs there.
//
// It asks the platform's main queue (platform::MainQueue::isMainThread()) and, on any other
// thread, reports a contract violation naming the calling function (a fault line, then abort; see
// common/ContractViolation.h). Builds configured with VEMBA_THREAD_CHECKS (Debug builds by
// default) compile it in; other builds compile it to nothing, leaving no call, symbol or text.
#pragma once

#if defined(VEMBA_THREAD_CHECKS)

#include <string_view>

namespace vemba::detail {
inline constexpr std::string_view kThreadViolationPrefix = "vemba: contract violation: ";
inline constexpr std::string_view kOffMainThread = " called off the main thread";
void assertMainThread(std::string_view function);
}  // namespace vemba::detail

#define VEMBA_ASSERT_MAIN_THREAD() ::vemba::detail::assertMainThread(__func__)

#else

#define VEMBA_ASSERT_MAIN_THREAD() static_cast<void>(0)

#endif
