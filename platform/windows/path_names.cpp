// Names as Windows has them: UTF-16, with a case rule of its own.
#include "platform/path_names.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <utility>

#include "base/utf.h"
#include "platform/windows/native_text.h"

namespace vel::platform {

namespace {

/// Longer names do not exist; includes the terminator.
constexpr int kMaxUnits = 32768;

Utf8Sequence firstSequence(std::string_view text) noexcept {
  return utf8SequenceAt(reinterpret_cast<const unsigned char*>(text.data()), text.size());
}

/// Gives a text as UTF-16 in blocks. Each byte that is not UTF-8 becomes an unpaired surrogate.
class UnitReader {
 public:
  explicit UnitReader(std::string_view text) noexcept : text_(text) {}

  /// Fills the block, except at the end of the text. Returns the number of its units.
  int fill() noexcept {
    int count = 0;
    while (count < kBlock) {
      if (low_ != 0) {
        block_[static_cast<std::size_t>(count++)] = std::exchange(low_, L'\0');
      } else if (!text_.empty()) {
        block_[static_cast<std::size_t>(count++)] = next();
      } else {
        break;
      }
    }
    return count;
  }
  const wchar_t* block() const noexcept { return block_.data(); }

 private:
  static constexpr int kBlock = 256;

  wchar_t next() noexcept {
    const auto* const bytes = reinterpret_cast<const unsigned char*>(text_.data());
    const Utf8Sequence sequence = utf8SequenceAt(bytes, text_.size());
    const std::size_t size = sequence.isValid ? sequence.size : 1;
    const char32_t character = sequence.isValid ? decodeUtf8(bytes, size) : char32_t{0xDC00} + bytes[0];
    text_.remove_prefix(size);
    if (character < kFirstSupplementary) return static_cast<wchar_t>(character);
    low_ = static_cast<wchar_t>(lowSurrogateOf(character));
    return static_cast<wchar_t>(highSurrogateOf(character));
  }

  std::string_view text_;
  wchar_t low_ = L'\0';  ///< the second half of a pair whose first half was given
  std::array<wchar_t, kBlock> block_;
};

/// Converts between two code pages by way of UTF-16. No character is replaced by another one.
SystemError convert(UINT from, std::string_view text, UINT to, char* out, std::size_t capacity,
                    std::size_t& size) noexcept {
  size = 0;
  if (text.empty()) return 0;
  if (text.size() > std::size_t{4} * kMaxUnits) return ERANGE;
  std::array<wchar_t, kMaxUnits> units;
  const int count = MultiByteToWideChar(from, MB_ERR_INVALID_CHARS, text.data(),
                                        static_cast<int>(text.size()), units.data(), kMaxUnits);
  if (count == 0) return GetLastError() == ERROR_INSUFFICIENT_BUFFER ? ERANGE : EILSEQ;
  // The two flags exclude each other: UTF-8 has every character, so nothing can be replaced there.
  const bool isUtf8 = to == CP_UTF8;
  BOOL isReplaced = FALSE;
  const int written = WideCharToMultiByte(
      to, isUtf8 ? WC_ERR_INVALID_CHARS : WC_NO_BEST_FIT_CHARS, units.data(), count, out,
      static_cast<int>(std::min<std::size_t>(capacity, 1 << 20)), nullptr, isUtf8 ? nullptr : &isReplaced);
  if (isReplaced != FALSE) return EILSEQ;
  if (written == 0 || capacity == 0) return GetLastError() == ERROR_NO_UNICODE_TRANSLATION ? EILSEQ : ERANGE;
  size = static_cast<std::size_t>(written);
  return 0;
}

}  // namespace

bool usesBackslashNames() noexcept {
  return true;
}

std::size_t findUnusableByte(std::string_view name) noexcept {
  for (std::string_view rest = name; !rest.empty();) {
    const Utf8Sequence sequence = firstSequence(rest);
    if (!sequence.isValid || rest[0] == '\0') return name.size() - rest.size();
    rest.remove_prefix(sequence.size);
  }
  return name.size();
}

int compareBackslashNames(std::string_view a, std::string_view b) noexcept {
  UnitReader unitsOfA(a), unitsOfB(b);
  while (true) {
    const int countOfA = unitsOfA.fill(), countOfB = unitsOfB.fill();
    const int result = CompareStringOrdinal(unitsOfA.block(), countOfA, unitsOfB.block(), countOfB, TRUE);
    if (result != CSTR_EQUAL) return result - CSTR_EQUAL;
    if (countOfA == 0) return 0;
  }
}

NativeError workingDirectory(char drive, char* out, std::size_t capacity, std::size_t& size) noexcept {
  std::array<wchar_t, kMaxUnits> units;
  const wchar_t wanted[] = {static_cast<unsigned char>(drive), L':', L'\0'};
  const DWORD count = drive != '\0' ? GetFullPathNameW(wanted, kMaxUnits, units.data(), nullptr)
                                    : GetCurrentDirectoryW(kMaxUnits, units.data());
  if (count == 0 || count >= kMaxUnits) return count == 0 ? GetLastError() : ERROR_FILENAME_EXCED_RANGE;
  const int needed = WideCharToMultiByte(CP_UTF8, WC_ERR_INVALID_CHARS, units.data(), static_cast<int>(count),
                                         nullptr, 0, nullptr, nullptr);
  if (needed == 0) return ERROR_NO_UNICODE_TRANSLATION;
  size = static_cast<std::size_t>(needed);
  if (size > capacity) return 0;
  WideCharToMultiByte(CP_UTF8, 0, units.data(), static_cast<int>(count), out, needed, nullptr, nullptr);
  return 0;
}

SystemError narrowName(std::string_view name, char* out, std::size_t capacity, std::size_t& size) noexcept {
  return convert(CP_UTF8, name, fileNameCodePage(), out, capacity, size);
}

SystemError utf8Name(std::string_view narrow, char* out, std::size_t capacity, std::size_t& size) noexcept {
  return convert(fileNameCodePage(), narrow, CP_UTF8, out, capacity, size);
}

}  // namespace vel::platform
