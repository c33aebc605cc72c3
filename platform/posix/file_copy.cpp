// Copies a file's contents and permission bits. The copy is written beside the target and renamed over it, so
// a failure halfway leaves the old target intact; see beside.cpp.
//
// If the directory accepts no new file, the existing target is overwritten in place, as a last resort.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "platform/file_copy.h"
#include "platform/posix/beside.h"
#include "platform/posix/descriptor.h"
#include "platform/posix/native_path.h"
#include "platform/posix/permissions.h"
#include "platform/posix/target.h"
#include "platform/replacing.h"

namespace vel::platform {

namespace {

constexpr mode_t kPermissionBits = 0777;
/// How often somebody else may replace or create the target first, before this gives up.
constexpr int kMaxAttempts = 16;

/// Opens without waiting for a pipe's writer; pipes are refused afterwards.
Descriptor openSource(const char* path) noexcept {
  return Descriptor(retrying([&] { return open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK); }));
}

/// A link itself is replaced, unless it leads to the source (EACCES), a directory or a special file.
SystemError checkLink(const Replacement& target, const struct stat& source) noexcept {
  struct stat status;
  if (fstatat(target.directory, target.target, &status, 0) != 0) return 0;
  if (identityOf(status) == identityOf(source)) return EACCES;
  if (S_ISDIR(status.st_mode)) return EISDIR;
  return S_ISREG(status.st_mode) ? 0 : EINVAL;
}

/// Refuses the source itself under another name: overwriting it would destroy it. Refuses read-only files by
/// their bits, because access checks do not stop root.
SystemError checkExisting(const Replacement& target, const struct stat& source) noexcept {
  struct stat status;
  if (fstat(target.heldTarget, &status) != 0) return errno;
  if (S_ISLNK(status.st_mode)) return checkLink(target, source);
  if (const SystemError error = statusOfRegularFile(target.heldTarget, status); error != 0) return error;
  const bool isSource = identityOf(status) == identityOf(source);
  return isSource || isReadOnly(status) ? EACCES : 0;
}

struct Copy {
  int source;
  mode_t mode;
};

SystemError fill(int target, const Copy& copy) noexcept {
  // A failed earlier attempt may have read some of it.
  if (lseek(copy.source, 0, SEEK_SET) == -1) return errno;
  return copyByReading(copy.source, target);
}

bool isFile(int descriptor) noexcept {
  struct stat status;
  return descriptor >= 0 && statusOfRegularFile(descriptor, status) == 0;
}

/// Failures are ignored: on file systems without permission bits the contents still count.
void applyRights(const Replacement& target, mode_t mode) noexcept {
  if (isFile(target.heldTarget))
    copyRights(target, mode);
  else
    static_cast<void>(fchmod(target.descriptor, mode));
}

SystemError copyInPlace(int target, const Copy& copy) noexcept {
  if (retrying([&] { return ftruncate(target, 0); }) != 0) return errno;
  if (const SystemError error = fill(target, copy); error != 0) return error;
  static_cast<void>(fchmod(target, copy.mode));
  return flushWrites(target);
}

SystemError placeCopy(Replacement& target, const Copy& copy) noexcept {
  applyRights(target, copy.mode);
  return moveIntoPlace(target);
}

/// The directory accepts no new file, or the system does not let this entry be replaced.
bool isFixed(SystemError error) noexcept {
  return error == EACCES || error == EPERM || error == EBUSY;
}

SystemError copyBeside(Replacement& target, const Copy& copy) noexcept {
  // Private while it is written; placeCopy sets the final rights.
  SystemError error = createBeside(S_IRUSR | S_IWUSR, BesideName::None, target);
  if (error == 0) {
    error = fill(target.descriptor, copy);
    if (error == 0) error = flushWrites(target.descriptor);
    if (error != 0) return error;
    error = placeCopy(target, copy);
  }
  return isFixed(error) && isFile(target.heldTarget) ? copyInPlace(target.heldTarget, copy) : error;
}

SystemError copyOnce(const char* path, const struct stat& source, const Copy& copy) noexcept {
  BesideTarget target;
  if (const SystemError error = findTarget(path, LastLink::Hold, target); error != 0) return error;
  if (target.heldTarget >= 0)
    if (const SystemError error = checkExisting(target, source); error != 0) return error;
  return copyBeside(target, copy);
}

}  // namespace

SystemError copyFile(const char* from, const char* to, bool writable) noexcept {
  const NativePath sourcePath(from);
  const NativePath targetPath(to);
  if (!sourcePath.fits() || !targetPath.fits()) return ENAMETOOLONG;
  const Descriptor source = openSource(sourcePath.get());
  struct stat status;
  if (const SystemError error = statusOfRegularFile(source.get(), status); error != 0) return error;
  const mode_t mode = (status.st_mode & kPermissionBits) | (writable ? mode_t{S_IWUSR} : mode_t{0});
  SystemError error = 0;
  int attempt = 0;
  // ECANCELED and EEXIST: somebody changed the target meanwhile. Start again with what is there now.
  do error = copyOnce(targetPath.get(), status, {source.get(), mode});
  while ((error == ECANCELED || error == EEXIST) && ++attempt < kMaxAttempts);
  return error;
}

}  // namespace vel::platform
