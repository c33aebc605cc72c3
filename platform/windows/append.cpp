// Appends to files on behalf of a program that must not notice any failure, not even by a changed last error.
#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include "platform/append.h"
#include "platform/system_error.h"
#include "platform/windows/native_text.h"
#include "platform/windows/system_errors.h"

namespace vel::platform {

namespace {

/// WriteFile counts in 32 bits.
constexpr std::size_t kMaxWriteSize = std::size_t{1} << 30;

/// Appends one piece and adds the number of bytes written to `total`. An offset of all ones makes WriteFile
/// append atomically; the runtime's write seeks to the end first, and another process may write between the
/// two steps.
SystemError appendPiece(HANDLE file, const Bytes& piece, std::uint64_t& total) noexcept {
  for (std::size_t written = 0; written < piece.size;) {
    OVERLAPPED atEnd{};
    atEnd.Offset = 0xFFFFFFFF;
    atEnd.OffsetHigh = 0xFFFFFFFF;
    DWORD count = 0;
    const auto step = static_cast<DWORD>(std::min(piece.size - written, kMaxWriteSize));
    if (WriteFile(file, piece.data + written, step, &count, &atEnd) == FALSE) return errnoOf(GetLastError());
    if (count == 0) return EIO;
    written += count;
    total += count;
  }
  return 0;
}

/// Joins both pieces in one block, so that a single write appends them. The data is null if memory ran out.
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

LastErrorsKept::LastErrorsKept() noexcept : runtime_(errno), system_(GetLastError()) {}

LastErrorsKept::~LastErrorsKept() {
  errno = runtime_;
  SetLastError(system_);
}

SystemError openForAppending(const char* name, AppendTo, int& descriptor) noexcept {
  constexpr int kFlags = _O_WRONLY | _O_APPEND | _O_CREAT | _O_BINARY | _O_SEQUENTIAL | _O_NOINHERIT;
  return withWideName(name, [&descriptor](const wchar_t* path) {
    descriptor = _wopen(path, kFlags, _S_IREAD | _S_IWRITE);
    return descriptor == -1 ? errno : 0;
  });
}

SystemError appendBytes(int descriptor, const Bytes& first, const Bytes& second,
                        std::uint64_t& written) noexcept {
  auto* const file = reinterpret_cast<HANDLE>(_get_osfhandle(descriptor));
  const Bytes both = first.size != 0 && second.size != 0 ? joined(first, second) : Bytes{};
  written = 0;
  // Without memory the pieces are written one after the other: another process's entry between them is better
  // than a lost one.
  SystemError error = appendPiece(file, both.data != nullptr ? both : first, written);
  if (both.data != nullptr)
    HeapFree(GetProcessHeap(), 0, const_cast<char*>(both.data));
  else if (error == 0)
    error = appendPiece(file, second, written);
  return error;
}

SystemError closeAppended(int descriptor) noexcept {
  return _close(descriptor) == 0 ? 0 : errno;
}

}  // namespace vel::platform
