// Advisory locks of files with flock().
//
// A lock belongs to an inode, but callers lock a name, and a file is saved by renaming a new inode over that
// name. A process that waited for the old inode would then hold a lock that nobody else respects. So after
// locking, the name is looked up again, and unless it still leads to the locked inode, the lock is released
// and the next round begins:
//
//   open "x" (inode 7) -> another process saves: "x" is inode 8 -> lock 7 -> "x" is not 7: unlock, next round
//
// A file that does not exist yet is locked by its directory.
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "platform/file_lock.h"
#include "platform/posix/descriptor.h"
#include "platform/posix/file_search.h"
#include "platform/posix/native_path.h"
#include "platform/posix/target.h"

namespace vel::platform {

namespace {

/// Rounds before the file counts as busy; each one means that the file was replaced or removed within it.
constexpr int kMaxRounds = 100;

/// The result of one round; `isMoved`: the name leads to another file meanwhile, so repeat.
struct Round {
  LockResult result;
  bool isMoved = false;
};
constexpr Round kMoved{LockResult::Busy, true};

FileState stateIn(const struct stat& status) noexcept {
  constexpr std::uint64_t kNanosecondsPerSecond = 1'000'000'000;
  return {identityOf(status), static_cast<std::uint64_t>(status.st_size),
          static_cast<std::uint64_t>(status.st_ctim.tv_sec) * kNanosecondsPerSecond +
              static_cast<std::uint64_t>(status.st_ctim.tv_nsec)};
}

LockResult lockDescriptor(int descriptor) noexcept {
  if (retrying([&] { return flock(descriptor, LOCK_EX | LOCK_NB); }) == 0) return LockResult::Locked;
  return errno == EWOULDBLOCK ? LockResult::Busy : LockResult::Unsupported;
}

/// Opens and locks. Tries a second time for writing, because some network file systems grant exclusive locks
/// only on descriptors open for writing (EBADF).
LockResult openLocked(const char* path, int flags, int& descriptor) noexcept {
  LockResult result = LockResult::Failed;
  for (const int access : {O_RDONLY, O_RDWR}) {
    const int opened = open(path, access | flags | O_NONBLOCK | O_CLOEXEC | O_NOCTTY);
    if (opened < 0) break;
    // After a failed second open the first descriptor is still in use, so it is replaced only now.
    if (descriptor >= 0) close(descriptor);
    descriptor = opened;
    result = lockDescriptor(descriptor);
    if (result != LockResult::Unsupported || errno != EBADF) break;
  }
  return result;
}

/// Locks what `path` leads to and verifies that it still does. Leaves nothing open if that fails.
Round lockAt(const char* path, int flags, FileLock& lock) noexcept {
  const LockResult result = openLocked(path, flags, lock.descriptor);
  if (lock.descriptor < 0) return errno == ENOENT ? kMoved : Round{LockResult::Failed};
  struct stat locked, named;
  const bool isTold = fstat(lock.descriptor, &locked) == 0;
  const bool isThere = isTold && stat(path, &named) == 0 && identityOf(locked) == identityOf(named);
  if (isThere && result != LockResult::Busy) {
    lock.file = stateIn(named);
    return {result};
  }
  unlockFile(lock);
  return isThere ? Round{result} : kMoved;
}

/// Locks the directory in which a missing file is to be created, so that two processes do not create it at
/// once.
Round lockDirectoryOf(const char* path, FileLock& lock) noexcept {
  PathBuffer directory;
  if (!copyDirectoryOf(path, directory)) return {LockResult::Failed};
  const Round round = lockAt(directory.data(), O_DIRECTORY, lock);
  if (lock.descriptor < 0) return {round.isMoved ? LockResult::Failed : round.result};
  lock.file = {};
  struct stat made;
  if (stat(path, &made) != 0 && errno == ENOENT) return round;
  // Somebody created the file before the directory was locked: lock the file itself in the next round.
  unlockFile(lock);
  return kMoved;
}

Round lockOnce(const char* path, FileLock& lock) noexcept {
  struct stat found;
  if (stat(path, &found) != 0)
    return errno == ENOENT ? lockDirectoryOf(path, lock) : Round{LockResult::Failed};
  if (S_ISDIR(found.st_mode)) return {LockResult::Failed};
  if (S_ISREG(found.st_mode)) return lockAt(path, 0, lock);
  // A device or pipe cannot be replaced, so it needs no lock.
  lock.file = stateIn(found);
  return {LockResult::Locked};
}

}  // namespace

SystemError stateOf(int descriptor, FileState& state) noexcept {
  struct stat status;
  if (fstat(descriptor, &status) != 0) return errno;
  state = stateIn(status);
  return 0;
}

SystemError stateAt(const char* name, FileState& state) noexcept {
  const NativePath path(name);
  struct stat status;
  if (!path.fits()) return ENAMETOOLONG;
  const bool isThere = stat(path.get(), &status) == 0;
  if (!isThere && errno != ENOENT) return errno;
  state = isThere ? stateIn(status) : FileState{};
  return 0;
}

LockResult tryLockFile(const char* name, FileLock& lock) noexcept {
  lock = {};
  const NativePath path(name);
  if (!path.fits()) return LockResult::Failed;
  Round round = kMoved;
  for (int left = kMaxRounds; left > 0 && round.isMoved; --left) round = lockOnce(path.get(), lock);
  return round.result;
}

// LOCK_UN first: a child forked meanwhile shares the open file description, and closing this descriptor alone
// would leave the file locked until the child ends.
void unlockFile(FileLock& lock) noexcept {
  if (lock.descriptor < 0) return;
  flock(lock.descriptor, LOCK_UN);
  close(lock.descriptor);
  lock = {};
}

}  // namespace vel::platform
