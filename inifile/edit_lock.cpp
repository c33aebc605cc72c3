// The lock that keeps two editors from overwriting each other's changes. It binds only programs that lock the
// file themselves, and every save puts another file under the name. So the state of the file at locking time
// is kept, and each read and each save compare with it: if another program has replaced or changed the file,
// the read or save is refused, so that the other program's change is not lost.
#include "inifile/edit_lock.h"

#include <algorithm>

#include "platform/clocks.h"
#include "platform/file_lock.h"

namespace vel::inifile {

namespace {

constexpr std::uint32_t kMaxPauseMs = 20;

/// Polls for the lock, because the systems wait either without a limit or not at all. The pauses grow from 1
/// ms, so that a short wait ends soon and a long one costs little.
platform::LockResult lockWithin(std::uint32_t timeLimitMs, const char* name, platform::FileLock& lock) {
  const std::uint32_t start = platform::tickCount();
  for (std::uint32_t pauseMs = 1;; pauseMs = std::min(2 * pauseMs, kMaxPauseMs)) {
    const platform::LockResult result = platform::tryLockFile(name, lock);
    const std::uint32_t waitedMs = platform::tickCount() - start;
    if (result != platform::LockResult::Busy || waitedMs >= timeLimitMs) return result;
    platform::sleepMilliseconds(std::min(pauseMs, timeLimitMs - waitedMs));
  }
}

}  // namespace

VelEnIniFileLock EditLock::acquire(const char* name, std::uint32_t timeLimitMs) {
  release();
  const platform::LockResult result = lockWithin(timeLimitMs, name, lock_);
  // Without locks in the file system the comparison of states is still possible, and the only protection.
  isGuarding_ = result == platform::LockResult::Locked || result == platform::LockResult::Unsupported;
  switch (result) {
    case platform::LockResult::Locked:
      return VelEnIniFileLock::LOCKED;
    case platform::LockResult::Busy:
      return VelEnIniFileLock::TIMED_OUT;
    case platform::LockResult::Unsupported:
      return VelEnIniFileLock::UNSUPPORTED;
    default:
      return VelEnIniFileLock::FAILED;
  }
}

void EditLock::release() {
  platform::unlockFile(lock_);
  isGuarding_ = isReplaced_ = false;
}

std::optional<platform::FileState> EditLock::checkRead(int descriptor) {
  platform::FileState found;
  const bool isTold = platform::stateOf(descriptor, found) == 0;
  if (isGuarding_ && !noteMatch(isTold && found == lock_.file)) return std::nullopt;
  return found;
}

bool EditLock::mayReplace(const char* name, const platform::FileIdentity& replaced) {
  if (!isGuarding_) return true;
  platform::FileState found;
  return noteMatch(platform::stateAt(name, found) == 0 && found == lock_.file && replaced == found.identity &&
                   (!read_.has_value() || *read_ == lock_.file));
}

bool EditLock::noteMatch(bool isSame) {
  isReplaced_ = !isSame;
  return isSame;
}

}  // namespace vel::inifile
