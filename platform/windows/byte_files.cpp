// Reads and writes the bytes of files and standard streams through the C runtime. Files are opened in binary
// mode; the mode of a standard stream is the caller's matter.
#include "platform/byte_files.h"

#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>

#include "platform/console_text.h"
#include "platform/windows/native_text.h"

namespace vel::platform {

namespace {

/// The runtime's counts have 32 bits, and pipes refuse very large ones.
constexpr std::size_t kMaxStepSize = std::size_t{1} << 20;

unsigned int stepOf(std::size_t size) noexcept {
  return static_cast<unsigned int>(std::min(size, kMaxStepSize));
}

}  // namespace

// PipeWithoutWriter needs no check: a pipe exists only as long as its server does.
SystemError openForReading(const char* name, PipeWithoutWriter, int& descriptor) noexcept {
  return withWideName(name, [&descriptor](const wchar_t* path) {
    descriptor = _wopen(path, _O_RDONLY | _O_BINARY | _O_NOINHERIT);
    return descriptor == -1 ? errno : 0;
  });
}

void closeDescriptor(int descriptor) noexcept {
  _close(descriptor);
}

SystemError readBytes(int descriptor, void* buffer, std::size_t capacity, std::size_t& size) noexcept {
  if (descriptor == kStandardInput && isConsoleInUtf8(descriptor))
    return readConsole(static_cast<char*>(buffer), capacity, size);
  const int count = _read(descriptor, buffer, stepOf(capacity));
  if (count < 0) return errno;
  // Runtimes remember the end of a file until the position is set; it may grow, though.
  if (count == 0) _lseeki64(descriptor, 0, SEEK_CUR);
  size = static_cast<std::size_t>(count);
  return 0;
}

SystemError writeBytes(int descriptor, const void* data, std::size_t size) noexcept {
  const char* bytes = static_cast<const char*>(data);
  if (isConsoleInUtf8(descriptor)) return writeConsole(descriptor, bytes, size);
  while (size > 0) {
    const int count = _write(descriptor, bytes, stepOf(size));
    if (count <= 0) return count < 0 ? errno : EIO;
    bytes += count;
    size -= static_cast<std::size_t>(count);
  }
  return 0;
}

std::uint64_t bytesLeft(int descriptor) noexcept {
  struct _stat64 status {};
  // Only regular files have a size that is known in advance.
  if (_fstat64(descriptor, &status) != 0 || (status.st_mode & _S_IFMT) != _S_IFREG) return 0;
  const std::int64_t position = _telli64(descriptor);
  return position < 0 || position >= status.st_size ? 0
                                                    : static_cast<std::uint64_t>(status.st_size - position);
}

bool skipBytes(int descriptor, std::uint64_t count) noexcept {
  // Seeking accepts positions beyond the end, so the step is limited here.
  const auto step = static_cast<std::int64_t>(std::min(count, bytesLeft(descriptor)));
  return step > 0 && _lseeki64(descriptor, step, SEEK_CUR) != -1;
}

}  // namespace vel::platform
