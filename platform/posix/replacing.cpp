// Replaces a file atomically: the order of the steps from finding the target to storing the directory. The
// steps themselves are in target.cpp (finding) and beside.cpp (the temporary file).
//
// The order matters: contents first, then rights, then fsync, then the rename, then fsync of the directory. A
// rename that reached the disk before the contents would leave an empty file after a power failure.
#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "platform/posix/beside.h"
#include "platform/posix/native_path.h"
#include "platform/posix/permissions.h"
#include "platform/posix/replacing_at.h"
#include "platform/posix/target.h"
#include "platform/replacing.h"

namespace vel::platform {

namespace {

constexpr mode_t kPermissionBits = 07777;
/// Writes to a device or pipe directly, because replacing it would put a regular file in its place.
/// O_NONBLOCK, which kept the open from waiting, is removed: writes may wait.
SystemError writeInPlace(Replacement& replacement) noexcept {
  replacement.descriptor = std::exchange(replacement.heldTarget, -1);
  const int flags = fcntl(replacement.descriptor, F_GETFL);
  return fcntl(replacement.descriptor, F_SETFL, flags & ~O_NONBLOCK) == 0 ? 0 : errno;
}

SystemError startFound(Replacement& replacement) noexcept {
  constexpr mode_t kNewFile = S_IRUSR | S_IWUSR | S_IRGRP | S_IWGRP | S_IROTH | S_IWOTH;
  if (replacement.heldTarget < 0) return createBeside(kNewFile, BesideName::None, replacement);
  struct stat status;
  if (fstat(replacement.heldTarget, &status) != 0) return errno;
  replacement.old = identityOf(status);
  if (!S_ISREG(status.st_mode)) return writeInPlace(replacement);
  // Access checks do not stop root, so look at the bits: a read-only file must not be replaced by mistake.
  if (isReadOnly(status)) return EACCES;
  return createBeside(S_IRUSR | S_IWUSR, BesideName::None, replacement);
}

/// Call after the contents are written: the file is private until then, so that nobody reads a part of it.
SystemError copyOldRights(Replacement& replacement) noexcept {
  if (replacement.heldTarget < 0) return 0;
  struct stat status;
  if (fstat(replacement.heldTarget, &status) != 0) return errno;
  if (!isStillTarget(replacement)) return ECANCELED;
  replacement.keepsRights = copyRights(replacement, status.st_mode & kPermissionBits);
  return 0;
}

SystemError closeWritten(Replacement& replacement) noexcept {
  // An interrupted close has closed the descriptor all the same; retrying could close another thread's.
  return close(std::exchange(replacement.descriptor, -1)) == 0 || errno == EINTR ? 0 : errno;
}

SystemError finishBeside(Replacement& replacement) noexcept {
  SystemError error = copyOldRights(replacement);
  if (error == 0) error = store(replacement.descriptor);
  if (error == 0) error = flushWrites(replacement.descriptor);
  if (error == 0) error = moveIntoPlace(replacement);
  return error == 0 ? storeDirectory(replacement) : error;
}

void removeAndEnd(int signal) {
  removeUnfinished();
  // SA_RESETHAND restored the default action, which ends the process as soon as this handler returns.
  raise(signal);
}

}  // namespace

SystemError startReplacementAt(int directory, const char* path, Replacement& replacement) noexcept {
  // Field by field: `Replacement{}` would clear both name buffers, 8 KiB for each save.
  replacement.descriptor = replacement.directory = replacement.heldTarget = -1;
  replacement.isBeside = false;
  replacement.keepsRights = true;
  replacement.old = {};
  replacement.temporary[0] = '\0';
  SystemError error = findTargetAt(directory, path, LastLink::Follow, replacement);
  if (error == 0) error = startFound(replacement);
  if (error != 0) closeReplacement(replacement);
  return error;
}

SystemError startReplacement(const char* name, Replacement& replacement) noexcept {
  const NativePath path(name);
  return path.fits() ? startReplacementAt(AT_FDCWD, path.get(), replacement) : ENAMETOOLONG;
}

SystemError finishReplacement(Replacement& replacement) noexcept {
  const SystemError error = replacement.isBeside ? finishBeside(replacement) : closeWritten(replacement);
  closeReplacement(replacement);
  return error;
}

void dropReplacement(Replacement& replacement) noexcept {
  closeReplacement(replacement);
}

void removeUnfinishedOnSignals() noexcept {
  for (const int signal : {SIGHUP, SIGINT, SIGTERM}) {
    struct sigaction action = {};
    // The program's own handler, or its decision to ignore the signal, is kept.
    if (sigaction(signal, nullptr, &action) != 0 || action.sa_handler != SIG_DFL) continue;
    action.sa_handler = removeAndEnd;
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    sigaction(signal, &action, nullptr);
  }
}

}  // namespace vel::platform
