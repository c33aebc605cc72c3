// The lock that serialises saving, and all other steps of the trace that concern several threads. Recording
// an entry in the ring of the own thread does not take it.
#pragma once

namespace vel::trace {

/// Holds the lock of the process during its life. A thread that has it already, because saving led to another
/// trace call, does not wait for itself: isNested() is true then, and the caller must leave the rings alone.
class SaveLock {
 public:
  SaveLock();
  SaveLock(const SaveLock&) = delete;
  SaveLock& operator=(const SaveLock&) = delete;
  ~SaveLock();

  bool isNested() const { return nested_; }

  /// Waits for the lock, and keeps it during a fork; then both processes release theirs.
  static void lockForFork();
  static void unlockAfterFork();
  /// From here on the lock is waited for only briefly: the process ends, and the system may have ended the
  /// thread that has the lock.
  static void processEnds();

 private:
  bool nested_;
};

}  // namespace vel::trace
