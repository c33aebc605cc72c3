// Writes and reads text at a console with its wide functions. The standard streams are in
// console_streams.cpp.
#include "platform/console_text.h"

#include <io.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string_view>

#include "base/utf16_pieces.h"
#include "platform/descriptors.h"
#include "platform/windows/native_text.h"
#include "platform/windows/system_errors.h"

namespace vel::platform {

namespace {

HANDLE handleOfStandard(int descriptor) noexcept {
  return reinterpret_cast<HANDLE>(_get_osfhandle(descriptor));
}

/// Lets one thread at a time use a console.
class ConsoleLock {
 public:
  explicit ConsoleLock(SRWLOCK& lock) noexcept : lock_(lock) { AcquireSRWLockExclusive(&lock_); }
  ConsoleLock(const ConsoleLock&) = delete;
  ConsoleLock& operator=(const ConsoleLock&) = delete;
  ~ConsoleLock() { ReleaseSRWLockExclusive(&lock_); }

 private:
  SRWLOCK& lock_;
};

/// What one descriptor has not yet written of a character.
struct Output {
  SRWLOCK lock = SRWLOCK_INIT;
  Utf16Pieces pieces;
};
constinit Output standardOutput, standardError;

SystemError writeUnits(HANDLE console, const char16_t* units, std::size_t count) noexcept {
  while (count > 0) {
    DWORD written = 0;
    if (WriteConsoleW(console, units, static_cast<DWORD>(count), &written, nullptr) == FALSE)
      return errnoOf(GetLastError());
    if (written == 0) return EIO;
    units += written;
    count -= written;
  }
  return 0;
}

/// The line that the user typed last, as far as it has not been returned.
struct Input {
  /// A unit becomes at most three bytes.
  static constexpr DWORD kMaxUnits = 1024;

  SRWLOCK lock = SRWLOCK_INIT;
  char text[3 * kMaxUnits] = "";
  std::size_t size = 0;
  std::size_t position = 0;
  wchar_t highSurrogate = 0;  ///< the last unit of a part of a line, whose character follows
  bool isAtLineStart = true;
};
constinit Input input;

/// The character that Ctrl+Z enters, which ends the input at the start of a line.
constexpr wchar_t kEndOfInput = 0x1A;

/// Converts typed units, without the CR of line ends.
void storeTyped(wchar_t* units, DWORD count) noexcept {
  wchar_t* const end = std::remove(units, units + count, L'\r');
  std::wstring_view typed(units, static_cast<std::size_t>(end - units));
  input.position = 0;
  input.size = 0;
  input.highSurrogate = 0;
  if (typed.empty()) return;
  input.isAtLineStart = typed.back() == L'\n';
  if (isHighSurrogate(typed.back())) {
    input.highSurrogate = typed.back();
    typed.remove_suffix(1);
  }
  input.size = readableText(typed, CP_UTF8, Similar::Refuse, input.text, sizeof input.text);
}

/// Reads a line, or the part of a longer one that fits. Leaves nothing to return at the end of the input.
SystemError readLine() noexcept {
  wchar_t units[Input::kMaxUnits];
  do {
    const bool isStart = input.isAtLineStart;
    units[0] = input.highSurrogate;
    const DWORD kept = input.highSurrogate != 0 ? 1 : 0;
    DWORD count = 0;
    SetLastError(ERROR_SUCCESS);
    if (ReadConsoleW(handleOfStandard(kStandardInput), units + kept, Input::kMaxUnits - kept, &count,
                     nullptr) == FALSE)
      return errnoOf(GetLastError());
    if (count == 0) return GetLastError() == ERROR_OPERATION_ABORTED ? EINTR : 0;
    if (isStart && units[0] == kEndOfInput) return 0;
    storeTyped(units, count + kept);
  } while (input.size == 0);
  return 0;
}

}  // namespace

bool isConsoleInUtf8(int descriptor) noexcept {
  return descriptor >= kStandardInput && descriptor <= kStandardError && textCodePage() == CP_UTF8 &&
         isTerminal(descriptor);
}

SystemError writeConsole(int descriptor, const char* text, std::size_t size) noexcept {
  Output& output = descriptor == kStandardError ? standardError : standardOutput;
  const HANDLE console = handleOfStandard(descriptor);
  const ConsoleLock lock(output.lock);
  SystemError error = 0;
  output.pieces.append({text, size}, [&](const char16_t* units, std::size_t count) {
    error = writeUnits(console, units, count);
    return error == 0;
  });
  return error;
}

SystemError readConsole(char* buffer, std::size_t capacity, std::size_t& size) noexcept {
  const ConsoleLock lock(input.lock);
  size = 0;
  if (input.position == input.size)
    if (const SystemError error = readLine(); error != 0) return error;
  size = std::min(capacity, input.size - input.position);
  std::memcpy(buffer, input.text + input.position, size);
  input.position += size;
  return 0;
}

}  // namespace vel::platform
