// Converts between the process's narrow texts and the system's UTF-16. All functions of this room that pass
// texts to the system convert them here and call the wide function.
//
// No conversion loses characters: a name that cannot be converted is an error, so that it never becomes the
// name of another file. The system's narrow functions would replace characters by "similar" ones instead.
#pragma once

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <cstddef>
#include <string_view>

#include "platform/system_error.h"
#include "platform/windows/system_errors.h"

namespace vel::platform {

/// The code page of narrow texts: CP_UTF8 after useUtf8(), else the ANSI code page, which a program's
/// manifest can make UTF-8, too.
UINT textCodePage() noexcept;
/// The code page of file names: the same, unless the program called SetFileApisToOEM.
UINT fileNameCodePage() noexcept;

/// UTF-16 text that is on the stack if it has a usual size.
class WideBuffer {
 public:
  WideBuffer() noexcept { usual_[0] = L'\0'; }
  WideBuffer(const WideBuffer&) = delete;
  WideBuffer& operator=(const WideBuffer&) = delete;
  ~WideBuffer() { release(); }

  wchar_t* get() noexcept { return text_; }
  const wchar_t* get() const noexcept { return text_; }
  std::size_t capacity() const noexcept { return capacity_; }
  /// Makes room, and loses the text. Returns false if memory runs out.
  bool reserve(std::size_t capacity) noexcept;

  /// Calls a function of the system that fills in a buffer, and again with a larger one if the text does not
  /// fit: `query` gets the buffer and its capacity and returns the length of the text, or the capacity that
  /// it needs, or 0. Returns the length, or 0 with the system's last error set. There is room for one more
  /// unit at the end.
  template <typename Query>
  DWORD fill(Query query) noexcept {
    DWORD length = query(text_, static_cast<DWORD>(capacity_));
    // The text can grow meanwhile: it may be the current directory.
    while (length + 1 >= capacity_) {
      if (!reserve(std::size_t{length} + 2)) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return 0;
      }
      length = query(text_, static_cast<DWORD>(capacity_));
    }
    return length;
  }

 private:
  static constexpr std::size_t kUsualSize = 512;

  void release() noexcept;

  wchar_t usual_[kUsualSize];
  wchar_t* text_ = usual_;
  std::size_t capacity_ = kUsualSize;
};

/// A narrow text in UTF-16. Null counts as "".
class WideText {
 public:
  WideText(const char* text, UINT codePage) noexcept;

  /// ERROR_NO_UNICODE_TRANSLATION if bytes are ill-formed, ERROR_NOT_ENOUGH_MEMORY, or ERROR_SUCCESS.
  DWORD error() const noexcept { return error_; }
  bool isValid() const noexcept { return error_ == ERROR_SUCCESS; }
  /// NUL-terminated; "" if the text is not valid. May be changed in place.
  wchar_t* get() noexcept { return buffer_.get(); }
  const wchar_t* get() const noexcept { return buffer_.get(); }

 private:
  WideBuffer buffer_;
  DWORD error_;
};

/// A file name in UTF-16.
class WideName : public WideText {
 public:
  explicit WideName(const char* name) noexcept : WideText(name, fileNameCodePage()) {}
};

/// Calls `function` with the file name in UTF-16 and returns its result, or EILSEQ if the name cannot be
/// converted.
template <typename Function>
SystemError withWideName(const char* name, Function function) noexcept {
  const WideName wide(name);
  return wide.isValid() ? function(wide.get()) : errnoOf(wide.error());
}

/// Completes a file name by the current directory and drive. Returns its length, or 0 with the system's last
/// error set.
inline DWORD fullName(const wchar_t* name, WideBuffer& full) noexcept {
  return full.fill([name](wchar_t* text, DWORD room) { return GetFullPathNameW(name, room, text, nullptr); });
}

/// Returns the length of the full name of an open file, with links resolved, or 0.
inline DWORD finalName(HANDLE file, WideBuffer& name) noexcept {
  return name.fill([file](wchar_t* text, DWORD room) {
    return GetFinalPathNameByHandleW(file, text, room, FILE_NAME_NORMALIZED);
  });
}

/// Reads a variable of the system's environment. Returns the value's length, or 0 with the system's last
/// error set if there is no such variable.
inline DWORD systemVariable(const wchar_t* name, WideBuffer& value) noexcept {
  return value.fill([name](wchar_t* text, DWORD room) {
    // Values are at most this long, and the system fails for larger buffers, whose bytes it counts in 16
    // bits.
    constexpr DWORD kMaxRoom = 32767;
    return GetEnvironmentVariableW(name, text, room < kMaxRoom ? room : kMaxRoom);
  });
}

/// Converts to a code page, NUL-terminated. Returns ERROR_NO_UNICODE_TRANSLATION if the code page lacks a
/// character, ERROR_INSUFFICIENT_BUFFER if the text does not fit, or ERROR_SUCCESS.
DWORD narrowText(std::wstring_view text, UINT codePage, char* out, std::size_t capacity) noexcept;

enum class Similar {
  Refuse,  ///< "?" for every character that the code page lacks
  Accept   ///< the system's similar character if it has one, for texts that are only read by people
};

/// Converts to a code page, with "?" for characters that it lacks, which no file name contains. Returns the
/// number of bytes written, at most `capacity`, never part of a character and without terminator.
std::size_t readableText(std::wstring_view text, UINT codePage, Similar similar, char* out,
                         std::size_t capacity) noexcept;

}  // namespace vel::platform
