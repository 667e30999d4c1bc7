// Clang's thread-safety annotations, and the annotated mutex they need.
//
// Mutex is a std::mutex that Clang's -Wthread-safety analysis knows as a capability; MutexLock
// holds one for its scope (libstdc++'s own mutex and guards carry no annotations). State marked
// VEMBA_GUARDED_BY(m) may then be touched only while m is held, and functions marked
// VEMBA_REQUIRES(m) only called so; a Clang build with -Wthread-safety -Werror refuses code that
// breaks either. Other compilers see the macros as nothing and the types as a plain mutex and
// guard. Same contract as std::mutex and std::lock_guard: any thread, not recursive.
#pragma once

#include <mutex>

#if defined(__clang__)
#define VEMBA_THREAD_ANNOTATION(x) __attribute__((x))
#else
#define VEMBA_THREAD_ANNOTATION(x)
#endif

#define VEMBA_CAPABILITY(name) VEMBA_THREAD_ANNOTATION(capability(name))
#define VEMBA_SCOPED_CAPABILITY VEMBA_THREAD_ANNOTATION(scoped_lockable)
#define VEMBA_GUARDED_BY(m) VEMBA_THREAD_ANNOTATION(guarded_by(m))
#define VEMBA_REQUIRES(...) VEMBA_THREAD_ANNOTATION(requires_capability(__VA_ARGS__))
#define VEMBA_EXCLUDES(...) VEMBA_THREAD_ANNOTATION(locks_excluded(__VA_ARGS__))
#define VEMBA_ACQUIRE(...) VEMBA_THREAD_ANNOTATION(acquire_capability(__VA_ARGS__))
#define VEMBA_RELEASE(...) VEMBA_THREAD_ANNOTATION(release_capability(__VA_ARGS__))

namespace vemba {

class VEMBA_CAPABILITY("mutex") Mutex {
 public:
  void lock() VEMBA_ACQUIRE() { mutex_.lock(); }
  void unlock() VEMBA_RELEASE() { mutex_.unlock(); }

 private:
  std::mutex mutex_;
};

class VEMBA_SCOPED_CAPABILITY MutexLock {
 public:
  explicit MutexLock(Mutex& mutex) VEMBA_ACQUIRE(mutex) : mutex_(mutex) { mutex_.lock(); }
  ~MutexLock() VEMBA_RELEASE() { mutex_.unlock(); }
  MutexLock(const MutexLock&) = delete;
  MutexLock& operator=(const MutexLock&) = delete;

 private:
  Mutex& mutex_;
};

}  // namespace vemba
