// Replacing a file by another one written beside it.
#include <fcntl.h>
#include <limits.h>
#include <stdio.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "platform/platform.h"
#include "platform/posix/native_path.h"

namespace vel::platform {

namespace {

constexpr mode_t kPermissionBits = 07777;
constexpr mode_t kWriteBits = 0222;
constexpr int kMostNames = 100;

static_assert(sizeof(Replacement::target) > PATH_MAX);

int openRetrying(const char* path, int flags, mode_t mode) noexcept {
  int descriptor = -1;
  do descriptor = open(path, flags | O_CLOEXEC | O_NOCTTY, mode);
  while (descriptor < 0 && errno == EINTR);
  return descriptor;
}

/// A name of no more than 20 characters in the target's directory.
bool drawName(Replacement& replacement, int attempt) noexcept {
  const char* const separator = std::strrchr(replacement.target, '/');
  const int directory = separator != nullptr ? static_cast<int>(separator - replacement.target) + 1 : 0;
  const int length =
      snprintf(replacement.temporary, sizeof replacement.temporary, "%.*s~%08x%02x.tmp", directory,
               replacement.target, static_cast<unsigned int>(getpid()), static_cast<unsigned int>(attempt));
  return length > 0 && static_cast<std::size_t>(length) < sizeof replacement.temporary;
}

SystemError openBeside(Replacement& replacement, mode_t mode) noexcept {
  for (int attempt = 0; attempt < kMostNames; ++attempt) {
    if (!drawName(replacement, attempt)) return ENAMETOOLONG;
    replacement.descriptor = openRetrying(replacement.temporary, O_WRONLY | O_CREAT | O_EXCL, mode);
    if (replacement.descriptor >= 0) return 0;
    if (errno != EEXIST) return errno;
  }
  return EEXIST;
}

/// Devices and pipes cannot be replaced; a pipe without reader is a failure and nothing to wait for.
SystemError openItself(Replacement& replacement) noexcept {
  replacement.temporary[0] = '\0';
  replacement.descriptor = openRetrying(replacement.target, O_WRONLY | O_NONBLOCK, 0);
  if (replacement.descriptor < 0) return errno;
  const int flags = fcntl(replacement.descriptor, F_GETFL);
  if (fcntl(replacement.descriptor, F_SETFL, flags & ~O_NONBLOCK) == 0) return 0;
  const SystemError error = errno;
  dropReplacement(replacement);
  return error;
}

/// Copies the access control list. Without one the new file keeps none either, not even the one its directory
/// gave it. False when that cannot be done.
bool takeOverList(const Replacement& replacement) noexcept {
  constexpr const char* kList = "system.posix_acl_access";
  char list[4096];
  const ssize_t size = getxattr(replacement.target, kList, list, sizeof list);
  if (size < 0 && errno == ENODATA)
    return fremovexattr(replacement.descriptor, kList) == 0 || errno == ENODATA;
  if (size < 0) return errno != ERANGE;
  return fsetxattr(replacement.descriptor, kList, list, static_cast<std::size_t>(size), 0) == 0;
}

/// Owner, group and permissions of the old file. Only the superuser can give files away; the group counts
/// more than nothing. What belonged to a group or list that cannot be kept is no permission for another one.
void takeOverRights(const Replacement& replacement, const struct stat& old) noexcept {
  constexpr mode_t kGroupBits = S_IRWXG | S_ISGID;
  const bool keepsGroup = fchown(replacement.descriptor, old.st_uid, old.st_gid) == 0 ||
                          fchown(replacement.descriptor, static_cast<uid_t>(-1), old.st_gid) == 0;
  const bool keepsAll = takeOverList(replacement) && keepsGroup;
  const mode_t mode = old.st_mode & kPermissionBits;
  static_cast<void>(fchmod(replacement.descriptor, keepsAll ? mode : mode & ~kGroupBits));
}

SystemError startBesideExisting(Replacement& replacement, const struct stat& old) noexcept {
  // The superuser may write to everything, but must not do so by mistake.
  if ((old.st_mode & kWriteBits) == 0 || access(replacement.target, W_OK) != 0) return EACCES;
  if (const SystemError error = openBeside(replacement, S_IRUSR | S_IWUSR); error != 0) return error;
  takeOverRights(replacement, old);
  return 0;
}

/// A link that leads nowhere stays as it is: what it names is not made, and the link not lost.
SystemError startNew(Replacement& replacement) noexcept {
  struct stat link;
  if (lstat(replacement.target, &link) == 0) return ENOENT;
  return openBeside(replacement, S_IRUSR | S_IWUSR | S_IRGRP | S_IWGRP | S_IROTH | S_IWOTH);
}

}  // namespace

SystemError startReplacement(const char* name, Replacement& replacement) noexcept {
  const NativePath path(name);
  if (!path.fits() || std::strlen(path.get()) >= sizeof replacement.target) return ENAMETOOLONG;
  replacement.descriptor = -1;
  std::memcpy(replacement.target, path.get(), std::strlen(path.get()) + 1);
  struct stat old;
  if (stat(path.get(), &old) != 0) return errno == ENOENT ? startNew(replacement) : errno;
  if (S_ISDIR(old.st_mode)) return EISDIR;
  if (!S_ISREG(old.st_mode)) return openItself(replacement);
  char resolved[PATH_MAX];
  if (realpath(path.get(), resolved) == nullptr) return errno;
  std::memcpy(replacement.target, resolved, std::strlen(resolved) + 1);
  return startBesideExisting(replacement, old);
}

SystemError finishReplacement(Replacement& replacement) noexcept {
  const bool isBeside = replacement.temporary[0] != '\0';
  // Not every file system can promise that it is stored.
  const bool isStored = !isBeside || fsync(replacement.descriptor) == 0 || errno == EINVAL || errno == ENOSYS;
  SystemError error = isStored ? 0 : errno;
  if (close(replacement.descriptor) != 0 && error == 0 && errno != EINTR) error = errno;
  replacement.descriptor = -1;
  if (!isBeside) return error;
  if (error == 0 && rename(replacement.temporary, replacement.target) != 0) error = errno;
  if (error != 0) unlink(replacement.temporary);
  return error;
}

void dropReplacement(Replacement& replacement) noexcept {
  close(replacement.descriptor);
  replacement.descriptor = -1;
  if (replacement.temporary[0] != '\0') unlink(replacement.temporary);
}

}  // namespace vel::platform
