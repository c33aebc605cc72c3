// Locks of edited files.
#include "inifile/edit_lock.h"

#include <algorithm>

namespace vel::inifile {

namespace {

constexpr std::uint32_t kLongestPauseMs = 20;

/// Asks with pauses that grow: the system waits without a limit, or not at all.
platform::LockResult lockWithin(std::uint32_t timeLimitMs, const char* name, platform::FileLock& lock) {
  const std::uint32_t start = platform::tickCount();
  for (std::uint32_t pauseMs = 1;; pauseMs = std::min(2 * pauseMs, kLongestPauseMs)) {
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
  const bool isTold = platform::stateOf(descriptor, found);
  if (isGuarding_ && !noteMatch(isTold && found == lock_.file)) return std::nullopt;
  return found;
}

bool EditLock::mayReplace(const char* name, const platform::FileIdentity& replaced) {
  if (!isGuarding_) return true;
  platform::FileState found;
  return noteMatch(platform::stateAt(name, found) && found == lock_.file && replaced == found.identity &&
                   (!read_.has_value() || *read_ == lock_.file));
}

bool EditLock::noteMatch(bool isSame) {
  isReplaced_ = !isSame;
  return isSame;
}

}  // namespace vel::inifile
