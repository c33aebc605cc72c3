// Status, attributes and permissions of files by name; removing, renaming and exclusive creation. Copying is
// in file_copy.cpp.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstring>

#include "platform/environment.h"
#include "platform/files.h"
#include "platform/linux/open_path.h"
#include "platform/posix/descriptor.h"
#include "platform/posix/native_path.h"
#include "platform/posix/permissions.h"
#include "platform/posix/rename.h"
#include "platform/posix/target.h"
#include "platform/system_error.h"

namespace vel::platform {

namespace {

bool readStatus(const NativePath& path, struct stat& status) noexcept {
  return path.fits() && stat(path.get(), &status) == 0;
}

/// Whether the last component begins with a dot. Final separators are ignored; "." and ".." are not hidden.
bool isHiddenName(const char* path) noexcept {
  const char* end = path + std::strlen(path);
  while (end != path && end[-1] == '/') --end;
  const char* start = end;
  while (start != path && start[-1] != '/') --start;
  const auto length = end - start;
  if (length < 2 || start[0] != '.') return false;
  return length > 2 || start[1] != '.';
}

/// Makes a regular file writable for its owner. The file is held open, so that exactly this one gets its
/// permissions back, even if its name leads to another file meanwhile.
class WritableFile {
 public:
  explicit WritableFile(const char* path) noexcept
      : file_(open(path, kOpenAsPlace | O_NOFOLLOW | O_CLOEXEC)), before_(0), isChanged_(false) {
    struct stat status;
    if (!file_.isOpen() || fstat(file_.get(), &status) != 0 || !S_ISREG(status.st_mode)) return;
    before_ = status.st_mode & 07777;
    isChanged_ = (before_ & S_IWUSR) == 0 && change(before_ | S_IWUSR);
  }

  void restore() const noexcept {
    if (isChanged_) change(before_);
  }

 private:
  /// fchmod refuses a descriptor opened as a place, so the mode is changed through a path to the descriptor.
  bool change(mode_t mode) const noexcept { return chmod(OpenPath(file_.get()).text, mode) == 0; }

  Descriptor file_;
  mode_t before_;
  bool isChanged_;
};

}  // namespace

bool entryExists(const char* name) noexcept {
  const NativePath path(name);
  return path.fits() && access(path.get(), F_OK) == 0;
}

bool isWritable(const char* name) noexcept {
  const NativePath path(name);
  struct stat status;
  // access() ignores the permission bits for root, so they are checked separately.
  return readStatus(path, status) && !isReadOnly(status) && access(path.get(), W_OK) == 0;
}

FileIdentity identityOfFile(const char* name) noexcept {
  const NativePath path(name);
  struct stat status;
  return readStatus(path, status) ? identityOf(status) : FileIdentity{};
}

std::uint32_t attributesOf(const char* name) noexcept {
  const NativePath path(name);
  struct stat status;
  if (!readStatus(path, status)) return kAttributesUnreadable;
  std::uint32_t attributes = 0;
  if (isReadOnly(status)) attributes |= kAttributeReadOnly;
  if (isHiddenName(path.get())) attributes |= kAttributeHidden;
  if (S_ISDIR(status.st_mode)) attributes |= kAttributeDirectory;
  return attributes;
}

SystemError statusOf(const char* name, EntryStatus& out) noexcept {
  const NativePath path(name);
  struct stat status;
  if (!path.fits()) return ENAMETOOLONG;
  if (stat(path.get(), &status) != 0) return errno;
  // Directories report 0 on every system; a POSIX system would give the size of its list of entries.
  out.sizeInBytes = S_ISDIR(status.st_mode) ? 0 : static_cast<std::uint64_t>(status.st_size);
  out.changed = status.st_ctime;
  out.accessed = status.st_atime;
  out.modified = status.st_mtime;
  return 0;
}

SystemError setReadOnly(const char* name, bool readOnly) noexcept {
  const NativePath path(name);
  if (!path.fits()) return ENAMETOOLONG;
  struct stat status;
  if (stat(path.get(), &status) != 0) return errno;
  const mode_t old = status.st_mode & 07777;
  const mode_t wanted = readOnly ? old & ~kWriteBits : old | S_IWUSR;
  return wanted == old || chmod(path.get(), wanted) == 0 ? 0 : errno;
}

SystemError removeFile(const char* name) noexcept {
  const NativePath path(name);
  if (!path.fits()) return ENOENT;
  // POSIX itself removes read-only files; some file systems, those of Windows servers for example, do not.
  const WritableFile file(path.get());
  if (unlink(path.get()) == 0) return 0;
  const SystemError error = errno;
  file.restore();
  // A name that no file can have counts as missing, as on Windows.
  return error == ENOTDIR || error == ENAMETOOLONG ? ENOENT : error;
}

SystemError renameFile(const char* from, const char* to) noexcept {
  const NativePath source(from);
  const NativePath target(to);
  if (!source.fits() || !target.fits()) return ENAMETOOLONG;
  if (std::strcmp(source.get(), target.get()) != 0)
    return renameWithoutReplacing(AT_FDCWD, source.get(), AT_FDCWD, target.get());
  // Both names lead to the same entry, found ignoring case: "name" is to become "Name". Match only the
  // parents of the new name then, so that its spelling is kept as typed.
  const NativePath typed(to, NativePath::Match::AllButLast);
  return renameWithoutReplacing(AT_FDCWD, source.get(), AT_FDCWD, typed.get());
}

SystemError currentDirectory(char* out, std::size_t capacity) noexcept {
  std::array<char, PATH_MAX> path;
  if (getcwd(path.data(), path.size()) == nullptr) return errno;
  // getcwd may give "(unreachable)..." for a directory outside this process's root. A backslash inside a
  // component could not be told from a separator.
  if (path[0] != '/' || std::strchr(path.data(), '\\') != nullptr) return EINVAL;
  const std::size_t length = std::strlen(path.data());
  // The path, the drive's two characters and the terminator.
  if (length + 3 > capacity) return ERANGE;
  out[0] = 'C';
  out[1] = ':';
  *std::replace_copy(path.data(), path.data() + length, out + 2, '/', '\\') = '\0';
  return 0;
}

const char* fallbackTmpDirectory() noexcept {
  const char* const directory = settingValue("TMPDIR");
  return directory != nullptr && *directory != '\0' ? directory : "/tmp";
}

const char* driveOfSlashNames() noexcept {
  return "C:";
}

SystemError createExclusively(const char* name, int& descriptor) noexcept {
  const NativePath path(name);
  if (!path.fits()) return ENAMETOOLONG;
  constexpr int kFlags = O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC;
  descriptor = retrying([&] { return open(path.get(), kFlags, S_IRUSR | S_IWUSR); });
  return descriptor < 0 ? errno : 0;
}

}  // namespace vel::platform
