// Finds the file or link that a name leads to and holds it open, together with its directory.
//
// Links are followed here, one at a time and relative to a held directory descriptor, instead of by one
// open() of the whole path. Only so is the directory known in which the temporary file must be created and
// renamed, and a component that is swapped afterwards cannot divert the rename:
//
//   "a/link"     hold a/, open "link": ELOOP, so read the link
//   "../b/file"  hold a/../b/, open "file"
//
// The directory is held as a place (O_PATH), for which permission to read it is not needed.
#include "platform/posix/target.h"

#include <fcntl.h>
#include <limits.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "platform/linux/open_path.h"
#include "platform/posix/descriptor.h"
#include "platform/posix/file_search.h"

namespace vel::platform {

namespace {

/// The number of links that Linux follows in one path.
constexpr int kMaxLinks = 40;
/// With O_NONBLOCK, opening a pipe that nobody reads fails immediately instead of waiting.
constexpr int kForWriting = O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;

int openTarget(const Replacement& replacement, int flags) noexcept {
  return retrying([&] { return openat(replacement.directory, replacement.target, flags); });
}

/// Holds the directory of `path` and stores its last component as the target. A relative path starts at the
/// directory `start`.
SystemError enterDirectoryOf(int start, const char* path, Replacement& replacement) noexcept {
  const char* const separator = std::strrchr(path, '/');
  const char* name = separator != nullptr ? separator + 1 : path;
  // A path that ends in a separator names a directory.
  if (separator != nullptr && *name == '\0') name = ".";
  PathBuffer directory;
  if (!copyDirectoryOf(path, directory) || std::strlen(name) >= sizeof replacement.target)
    return ENAMETOOLONG;
  const int next = openat(start, directory.data(), kOpenAsPlace | O_DIRECTORY | O_CLOEXEC);
  if (next < 0) return errno;
  if (replacement.directory >= 0) close(replacement.directory);
  replacement.directory = next;
  std::memcpy(replacement.target, name, std::strlen(name) + 1);
  return 0;
}

bool isStream(const struct stat& status) noexcept {
  return !S_ISREG(status.st_mode) && !S_ISDIR(status.st_mode);
}

/// Lets the system follow the link to a device or pipe: "/dev/stdout" may lead to a pipe that has no name,
/// which readlink cannot express. The opened file is checked again, because the link may have changed since.
SystemError openStream(Replacement& replacement) noexcept {
  struct stat status;
  replacement.heldTarget = openTarget(replacement, kForWriting);
  if (replacement.heldTarget < 0 || fstat(replacement.heldTarget, &status) != 0) return errno;
  return isStream(status) ? 0 : ECANCELED;
}

SystemError follow(Replacement& replacement) noexcept {
  struct stat status;
  if (fstatat(replacement.directory, replacement.target, &status, 0) == 0 && isStream(status))
    return openStream(replacement);
  char path[PATH_MAX];
  const ssize_t length = readlinkat(replacement.directory, replacement.target, path, sizeof path);
  // EINVAL: it is not a link any more.
  if (length < 0) return errno == EINVAL ? ECANCELED : errno;
  if (static_cast<std::size_t>(length) == sizeof path) return ENAMETOOLONG;
  path[length] = '\0';
  return enterDirectoryOf(replacement.directory, path, replacement);
}

SystemError holdLink(Replacement& replacement) noexcept {
  replacement.heldTarget = openTarget(replacement, kOpenAsPlace | O_NOFOLLOW | O_CLOEXEC);
  return replacement.heldTarget >= 0 ? 0 : errno;
}

}  // namespace

SystemError findTarget(const char* path, LastLink links, Replacement& replacement) noexcept {
  return findTargetAt(AT_FDCWD, path, links, replacement);
}

SystemError findTargetAt(int directory, const char* path, LastLink links, Replacement& replacement) noexcept {
  SystemError error = enterDirectoryOf(directory, path, replacement);
  for (int followed = 0; error == 0 && replacement.heldTarget < 0; ++followed) {
    replacement.heldTarget = openTarget(replacement, kForWriting | O_NOFOLLOW);
    if (replacement.heldTarget >= 0) return 0;
    // A missing file is created only under the name that the caller gave, never where a dangling link points.
    if (errno == ENOENT && followed == 0) return 0;
    // O_NOFOLLOW reports a link as ELOOP.
    if (errno != ELOOP || followed == kMaxLinks) return errno;
    error = links == LastLink::Follow ? follow(replacement) : holdLink(replacement);
  }
  return error;
}

// The held descriptor keeps the inode from being reused, so equal identities mean the same file.
bool isStillTarget(const Replacement& replacement) noexcept {
  struct stat held, now;
  return fstat(replacement.heldTarget, &held) == 0 &&
         fstatat(replacement.directory, replacement.target, &now, AT_SYMLINK_NOFOLLOW) == 0 &&
         identityOf(held) == identityOf(now);
}

FileIdentity identityOf(const struct stat& status) noexcept {
  return {status.st_dev, status.st_ino};
}

}  // namespace vel::platform
