// Appending to files from within a program that must not notice any failure.
#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include "platform/platform.h"
#include "platform/windows/system_errors.h"

namespace vel::platform {

namespace {

constexpr std::size_t kLargestWrite = std::size_t{1} << 30;

/// The runtime would move to the end and write in two steps, between which another process may write.
std::uint64_t appendPiece(HANDLE file, const Bytes& piece, SystemError& error) noexcept {
  std::size_t written = 0;
  while (written < piece.size) {
    OVERLAPPED atEnd{};
    atEnd.Offset = 0xFFFFFFFF;
    atEnd.OffsetHigh = 0xFFFFFFFF;
    DWORD count = 0;
    const auto step = static_cast<DWORD>(std::min(piece.size - written, kLargestWrite));
    const bool failed = WriteFile(file, piece.data + written, step, &count, &atEnd) == FALSE;
    if (failed || count == 0) {
      error = failed ? errnoOf(GetLastError()) : EIO;
      break;
    }
    written += count;
  }
  return written;
}

/// Both pieces as one, or null data when there is no memory.
Bytes joined(const Bytes& first, const Bytes& second) noexcept {
  const std::size_t size = first.size + second.size;
  auto* const block = static_cast<char*>(HeapAlloc(GetProcessHeap(), 0, size));
  if (block != nullptr) {
    std::memcpy(block, first.data, first.size);
    std::memcpy(block + first.size, second.data, second.size);
  }
  return {block, size};
}

}  // namespace

LastErrors lastErrors() noexcept {
  return {errno, GetLastError()};
}

void setLastErrors(const LastErrors& errors) noexcept {
  errno = errors.runtime;
  SetLastError(errors.system);
}

int openForAppending(const char* name, AppendTo, SystemError& error) noexcept {
  const int descriptor =
      _open(name, _O_WRONLY | _O_APPEND | _O_CREAT | _O_BINARY | _O_SEQUENTIAL | _O_NOINHERIT,
            _S_IREAD | _S_IWRITE);
  error = descriptor == -1 ? errno : 0;
  return descriptor;
}

std::uint64_t appendBytes(int descriptor, const Bytes& first, const Bytes& second,
                          SystemError& error) noexcept {
  auto* const file = reinterpret_cast<HANDLE>(_get_osfhandle(descriptor));
  error = 0;
  const Bytes both = first.size != 0 && second.size != 0 ? joined(first, second) : Bytes{};
  std::uint64_t written = appendPiece(file, both.data != nullptr ? both : first, error);
  if (both.data != nullptr)
    HeapFree(GetProcessHeap(), 0, const_cast<char*>(both.data));
  else if (error == 0)
    written += appendPiece(file, second, error);
  return written;
}

int closeAppended(int descriptor) noexcept {
  return _close(descriptor);
}

}  // namespace vel::platform
