// Copying a file's contents and permission bits.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <utility>

#include "platform/platform.h"
#include "platform/posix/native_path.h"

namespace vel::platform {

namespace {

constexpr mode_t kPermissionBits = 0777;
constexpr mode_t kWriteBits = 0222;

/// Repeats an interrupted system call.
template <typename Call>
auto retrying(Call call) noexcept {
  auto result = call();
  while (result == -1 && errno == EINTR) result = call();
  return result;
}

class Descriptor {
 public:
  /// Never waits for the other end of a pipe.
  Descriptor(const char* path, int flags) noexcept
      : number_(retrying([&] { return open(path, flags | O_CLOEXEC | O_NONBLOCK, S_IRUSR | S_IWUSR); })) {}
  Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(number_, other.number_);
    return *this;
  }
  ~Descriptor() { static_cast<void>(closeNow()); }

  bool isOpen() const noexcept { return number_ >= 0; }
  int get() const noexcept { return number_; }
  /// Some file systems report a failed write only here.
  SystemError closeNow() noexcept {
    const int number = std::exchange(number_, -1);
    return number < 0 || close(number) == 0 || errno == EINTR ? 0 : errno;
  }

 private:
  int number_;
};

SystemError statusOfRegularFile(const Descriptor& file, struct stat& status) noexcept {
  status = {};
  if (!file.isOpen() || fstat(file.get(), &status) != 0) return errno;
  if (S_ISDIR(status.st_mode)) return EISDIR;
  return S_ISREG(status.st_mode) ? 0 : EINVAL;
}

/// Empties an existing target, unless it is the source itself under another name, or read-only: the
/// superuser may write to it, but must not do so by mistake.
SystemError prepareExisting(const Descriptor& target, const struct stat& source) noexcept {
  struct stat status;
  if (const SystemError error = statusOfRegularFile(target, status); error != 0) return error;
  const bool isSource = status.st_dev == source.st_dev && status.st_ino == source.st_ino;
  if (isSource || (status.st_mode & kWriteBits) == 0) return EACCES;
  return retrying([&] { return ftruncate(target.get(), 0); }) == 0 ? 0 : errno;
}

SystemError writeAll(int target, const char* bytes, std::size_t count) noexcept {
  while (count > 0) {
    const ssize_t written = retrying([&] { return write(target, bytes, count); });
    if (written <= 0) return written == 0 ? EIO : errno;
    bytes += written;
    count -= static_cast<std::size_t>(written);
  }
  return 0;
}

SystemError copyContents(int source, int target) noexcept {
  std::array<char, 65536> buffer;
  for (;;) {
    const ssize_t count = retrying([&] { return read(source, buffer.data(), buffer.size()); });
    if (count <= 0) return count == 0 ? 0 : errno;
    if (const SystemError error = writeAll(target, buffer.data(), static_cast<std::size_t>(count));
        error != 0)
      return error;
  }
}

SystemError fill(Descriptor& target, const Descriptor& source, const struct stat& status) noexcept {
  if (const SystemError error = copyContents(source.get(), target.get()); error != 0) return error;
  // File systems without permission bits refuse; the contents are there all the same.
  static_cast<void>(fchmod(target.get(), status.st_mode & kPermissionBits));
  return target.closeNow();
}

}  // namespace

SystemError copyFile(const char* from, const char* to) noexcept {
  const NativePath sourcePath(from);
  const NativePath targetPath(to);
  if (!sourcePath.fits() || !targetPath.fits()) return ENAMETOOLONG;
  const Descriptor source(sourcePath.get(), O_RDONLY);
  struct stat status;
  if (const SystemError error = statusOfRegularFile(source, status); error != 0) return error;
  Descriptor target(targetPath.get(), O_WRONLY | O_CREAT | O_EXCL);
  const bool isNew = target.isOpen();
  if (!isNew) {
    if (errno != EEXIST) return errno;
    target = Descriptor(targetPath.get(), O_WRONLY);
    if (const SystemError error = prepareExisting(target, status); error != 0) return error;
  }
  const SystemError error = fill(target, source, status);
  if (error != 0 && isNew) unlink(targetPath.get());
  return error;
}

}  // namespace vel::platform
