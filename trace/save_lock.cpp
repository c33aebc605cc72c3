// The lock that serialises saving.
#include "trace/save_lock.h"

#include <atomic>
#include <cstdint>
#include <mutex>
#include <new>

#include "platform/clocks.h"
#include "platform/processes.h"

namespace vel::trace {

namespace {

/// Never destroyed: threads may trace until the process has ended.
std::mutex& mutex() {
  alignas(std::mutex) static unsigned char memory[sizeof(std::mutex)];
  static std::mutex* const made = ::new (static_cast<void*>(memory)) std::mutex;
  return *made;
}

constinit std::atomic<std::uint32_t> holder = 0;  ///< the ID of the thread that has the lock, or 0
constinit std::atomic<int> maxWaitMs = -1;        ///< negative: as long as it takes
constinit bool nestedFork = false;

/// Returns whether the lock was taken. When the process ends, its holder may no longer exist.
bool waitForMutex() {
  const int limit = maxWaitMs.load(std::memory_order_relaxed);
  if (limit < 0) {
    mutex().lock();
    return true;
  }
  for (int waited = 0; waited <= limit; ++waited) {
    if (mutex().try_lock()) return true;
    if (waited < limit) platform::sleepMilliseconds(1);
  }
  maxWaitMs.store(0, std::memory_order_relaxed);  // once is enough
  return false;
}

/// Returns whether this thread has the lock already.
bool lock() {
  const std::uint32_t thread = platform::currentThreadId();
  if (holder.load(std::memory_order_relaxed) == thread) return true;
  // Without the mutex go on, too: the last entries are worth more than order at the end of a process.
  if (waitForMutex()) holder.store(thread, std::memory_order_relaxed);
  return false;
}

void unlock() {
  if (holder.load(std::memory_order_relaxed) != platform::currentThreadId()) return;
  holder.store(0, std::memory_order_relaxed);
  mutex().unlock();
}

}  // namespace

SaveLock::SaveLock() : nested_(lock()) {}

SaveLock::~SaveLock() {
  if (!nested_) unlock();
}

void SaveLock::lockForFork() {
  nestedFork = lock();
}

void SaveLock::unlockAfterFork() {
  // The only thread of a child has another ID than its parent's thread, which took the lock.
  const std::uint32_t thread = platform::currentThreadId();
  if (holder.load(std::memory_order_relaxed) != 0) holder.store(thread, std::memory_order_relaxed);
  if (!nestedFork) unlock();
}

void SaveLock::processEnds() {
  constexpr int kWaitAtEndMs = 1000;
  maxWaitMs.store(kWaitAtEndMs, std::memory_order_relaxed);
}

}  // namespace vel::trace
