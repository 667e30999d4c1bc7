// One process-wide instance of T, created on first use and never destroyed at exit (what it holds
// may be used by other static destructors, or must not be torn down after the platform has gone).
// Tests alone replace it.
//
// Owner: a namespace-scope constinit variable of the half whose state T is. get() is thread-safe;
// resetForTesting() must not race with any use of the instance.
#pragma once

#include <atomic>
#include <memory>

#include "common/ThreadSafety.h"

namespace vemba {

template <typename T>
class ProcessWide {
 public:
  T& get() {
    if (T* existing = instance_.load(std::memory_order_acquire)) {
      return *existing;
    }
    const MutexLock lock(mutex_);
    T* existing = instance_.load(std::memory_order_relaxed);
    if (existing == nullptr) {
      existing = new T();
      instance_.store(existing, std::memory_order_release);
    }
    return *existing;
  }

  // Takes the instance out, then destroys it (so what it runs while it goes finds none, or a
  // fresh one); the next get() creates a fresh one.
  void resetForTesting() {
    std::unique_ptr<T> old;
    const MutexLock lock(mutex_);
    old.reset(instance_.exchange(nullptr, std::memory_order_acq_rel));
  }

 private:
  Mutex mutex_;
  std::atomic<T*> instance_{nullptr};
};

}  // namespace vemba
