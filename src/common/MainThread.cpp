// Compiled only into builds with VEMBA_THREAD_CHECKS.
#include "common/MainThread.h"

#include <string>

#include "common/ContractViolation.h"
#include "platform/LogSink.h"
#include "platform/MainQueue.h"
#include "platform/Services.h"

namespace vemba::detail {
namespace {
constexpr std::string_view kCategory = "threads";
}  // namespace

void assertMainThread(std::string_view function) {
  const platform::MainQueue* queue = platform::services().mainQueue;
  if (queue == nullptr || queue->isMainThread()) {
    return;
  }
  std::string reason(function);
  reason.append(kOffMainThread);
  contractViolation(platform::kLibraryLogSubsystem, kCategory, kThreadViolationPrefix, reason);
}

}  // namespace vemba::detail
