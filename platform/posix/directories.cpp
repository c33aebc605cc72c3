// Lists, creates, enters and removes directories.
//
// A tree is removed through directory descriptors: each entry is opened or unlinked relative to the open
// directory that listed it (openat, unlinkat), never by its path. Replacing a component of the path by a link
// meanwhile does not divert the removal to another tree.
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstring>

#include "platform/directories.h"
#include "platform/file_identity.h"
#include "platform/files.h"
#include "platform/posix/descriptor.h"
#include "platform/posix/native_path.h"
#include "platform/posix/permissions.h"
#include "platform/posix/target.h"
#include "platform/system_error.h"

namespace vel::platform {

namespace {

/// A path without final separators: with one, the system would follow a link in the last component even for
/// lstat and O_NOFOLLOW.
class PathWithoutFinalSeparators {
 public:
  explicit PathWithoutFinalSeparators(const char* name) noexcept : fits_(false), text_{} {
    const NativePath path(name);
    if (!path.fits()) return;
    std::size_t length = std::strlen(path.get());
    while (length > 1 && path.get()[length - 1] == '/') --length;
    fits_ = length < text_.size();
    if (fits_) std::memcpy(text_.data(), path.get(), length);
  }
  bool fits() const noexcept { return fits_; }
  const char* get() const noexcept { return text_.data(); }

 private:
  bool fits_;
  std::array<char, PATH_MAX> text_;
};

DIR* streamOf(const DirectoryHandle& directory) noexcept {
  return static_cast<DIR*>(directory.system);
}

const char* nameOf(const DirectoryEntry& entry) noexcept {
  return reinterpret_cast<const char*>(entry.systemName);
}

bool isDotName(const char* name) noexcept {
  return std::strcmp(name, ".") == 0 || std::strcmp(name, "..") == 0;
}

void setName(DirectoryEntry& entry, const char* name) noexcept {
  const std::size_t length = std::strlen(name);
  const std::size_t shown = std::min(length, sizeof entry.name - 1);
  std::memcpy(entry.name, name, shown);
  entry.name[shown] = '\0';
  std::memcpy(entry.systemName, name, length + 1);
}

std::uint32_t attributesFrom(const struct stat& status, const char* name) noexcept {
  std::uint32_t attributes = 0;
  if (isReadOnly(status)) attributes |= kAttributeReadOnly;
  if (name[0] == '.' && !isDotName(name)) attributes |= kAttributeHidden;
  if (S_ISDIR(status.st_mode)) attributes |= kAttributeDirectory;
  return attributes;
}

/// Describes an entry. False if it was removed after it had been listed, or if its name is too long. An entry
/// whose status cannot be read for another reason is listed as a file without permissions.
bool describe(const DirectoryHandle& directory, const char* name, DirectoryEntry& entry) noexcept {
  struct stat status;
  if (std::strlen(name) >= sizeof entry.systemName) return false;
  if (fstatat(dirfd(streamOf(directory)), name, &status, AT_SYMLINK_NOFOLLOW) != 0) {
    if (errno == ENOENT) return false;
    status = {};
  }
  setName(entry, name);
  entry.attributes = attributesFrom(status, name);
  return true;
}

SystemError openAt(int place, const char* path, int flags, DirectoryHandle& directory) noexcept {
  directory = {};
  Descriptor opened(
      retrying([&] { return openat(place, path, O_RDONLY | O_DIRECTORY | O_CLOEXEC | flags); }));
  // O_NOFOLLOW reports a link as ELOOP (ENOTDIR with O_DIRECTORY on some systems).
  if (!opened.isOpen()) return errno == ELOOP ? ENOTDIR : errno;
  directory.system = fdopendir(opened.get());
  if (directory.system == nullptr) return errno;
  static_cast<void>(opened.release());
  return 0;
}

}  // namespace

SystemError openDirectory(const char* name, DirectoryLink link, DirectoryHandle& directory) noexcept {
  directory = {};
  const PathWithoutFinalSeparators path(name);
  if (!path.fits()) return ENAMETOOLONG;
  return openAt(AT_FDCWD, path.get(), link == DirectoryLink::Refuse ? O_NOFOLLOW : 0, directory);
}

void closeDirectory(DirectoryHandle& directory) noexcept {
  if (directory.system != nullptr) closedir(streamOf(directory));
  directory = {};
}

SystemError identityOf(const DirectoryHandle& directory, FileIdentity& identity) noexcept {
  struct stat status;
  if (fstat(dirfd(streamOf(directory)), &status) != 0) return errno;
  identity = identityOf(status);
  return 0;
}

SystemError identityOfRoot(const char*, FileIdentity& identity) noexcept {
  struct stat status;
  if (stat("/", &status) != 0) return errno;
  identity = identityOf(status);
  return 0;
}

SystemError nextEntry(DirectoryHandle& directory, DirectoryEntry& entry, ListingStep& step) noexcept {
  // This function lists "." and ".." first; readdir may list them anywhere, or not at all.
  constexpr std::array<const char*, 2> kDots = {".", ".."};
  step = ListingStep::Entry;
  while (directory.listed < kDots.size())
    if (describe(directory, kDots[directory.listed++], entry)) return 0;
  for (;;) {
    // readdir returns null both at the end and on failure; only errno tells them apart.
    errno = 0;
    const dirent* const found = readdir(streamOf(directory));
    if (found == nullptr) {
      step = ListingStep::End;
      return errno;
    }
    if (!isDotName(found->d_name) && describe(directory, found->d_name, entry)) return 0;
  }
}

SystemError openSubdirectory(const DirectoryHandle& directory, const DirectoryEntry& entry,
                             DirectoryHandle& opened) noexcept {
  return openAt(dirfd(streamOf(directory)), nameOf(entry), O_NOFOLLOW, opened);
}

SystemError removeEntry(const DirectoryHandle& directory, const DirectoryEntry& entry) noexcept {
  const int flags = (entry.attributes & kAttributeDirectory) != 0 ? AT_REMOVEDIR : 0;
  return unlinkat(dirfd(streamOf(directory)), nameOf(entry), flags) == 0 ? 0 : errno;
}

SystemError makeDirectory(const char* name) noexcept {
  const NativePath path(name);
  if (!path.fits()) return ENAMETOOLONG;
  return mkdir(path.get(), 0777) == 0 ? 0 : errno;
}

SystemError removeDirectory(const char* name) noexcept {
  const PathWithoutFinalSeparators path(name);
  if (!path.fits()) return ENAMETOOLONG;
  if (rmdir(path.get()) == 0) return 0;
  // rmdir refuses a link. A link to a directory is removed itself, never its target.
  if (errno != ENOTDIR) return errno;
  struct stat link;
  struct stat target;
  const bool isLinkToDirectory = lstat(path.get(), &link) == 0 && S_ISLNK(link.st_mode) &&
                                 stat(path.get(), &target) == 0 && S_ISDIR(target.st_mode);
  if (!isLinkToDirectory) return ENOTDIR;
  return unlink(path.get()) == 0 ? 0 : errno;
}

SystemError changeDirectory(const char* name) noexcept {
  const NativePath path(name);
  if (!path.fits()) return ENAMETOOLONG;
  return chdir(path.get()) == 0 ? 0 : errno;
}

}  // namespace vel::platform
