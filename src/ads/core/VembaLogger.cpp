#include "ads/core/VembaLogger.h"

#include <memory>

#include "common/ThreadSafety.h"

namespace vemba {
namespace {

Mutex gSinkMutex;
std::shared_ptr<const VembaLogger::Sink> gSink VEMBA_GUARDED_BY(gSinkMutex);

}  // namespace

void VembaLogger::log(std::string_view message) {
  std::shared_ptr<const Sink> sink;
  {
    const MutexLock lock(gSinkMutex);
    sink = gSink;
  }
  if (sink) {
    (*sink)(message);
  }
}

void VembaLogger::setDevelopmentSink(Sink sink) {
  const MutexLock lock(gSinkMutex);
  gSink = sink ? std::make_shared<const Sink>(std::move(sink)) : nullptr;
}

}  // namespace vemba
