#include "ads/core/VembaLogger.h"

#include <memory>
#include <mutex>

namespace vemba {
namespace {

std::mutex gSinkMutex;
std::shared_ptr<const VembaLogger::Sink> gSink;  // guarded by gSinkMutex

}  // namespace

void VembaLogger::log(std::string_view message) {
  std::shared_ptr<const Sink> sink;
  {
    const std::lock_guard lock(gSinkMutex);
    sink = gSink;
  }
  if (sink) {
    (*sink)(message);
  }
}

void VembaLogger::setDevelopmentSink(Sink sink) {
  const std::lock_guard lock(gSinkMutex);
  gSink = sink ? std::make_shared<const Sink>(std::move(sink)) : nullptr;
}

}  // namespace vemba
