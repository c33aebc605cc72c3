// Names of any length in UTF-8, as the system's wide functions take them.
//
// The functions of the system take 260 characters, and fewer for directories, unless a name is absolute and
// has the prefix "\\?\", which turns off all translation: "/" is no separator then, "." and ".." are names,
// and blanks and dots at the end of a component belong to it. So names of usual length stay as they are, and
// others are translated here:
//
//   C:/long/../name       ->  \\?\C:\name
//   \\server\share\long   ->  \\?\UNC\server\share\long
//   C:long                ->  \\?\C:\current directory of C\long
//
// A component that ends in a blank or a dot gets the prefix, too, because without it the system would use the
// file whose name has no such end.
#pragma once

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <cstddef>
#include <string_view>

namespace vel::platform {

/// A text that grows; the system's heap serves long ones, because errors of the program's allocator could not
/// be reported here. Running out of memory empties the text for ever.
class GrowingText {
 public:
  GrowingText() noexcept = default;
  GrowingText(const GrowingText&) = delete;
  GrowingText& operator=(const GrowingText&) = delete;
  ~GrowingText();

  void append(std::wstring_view text) noexcept;
  void append(wchar_t unit) noexcept { append({&unit, 1}); }
  /// Calls a function that fills a buffer of the given capacity and returns the size, or the capacity that it
  /// needs, or 0; appends the result. Returns false for 0.
  template <typename Fill>
  bool appendBy(Fill fill) noexcept;
  void cutTo(std::size_t size) noexcept;
  void swap(GrowingText& other) noexcept;

  bool isLost() const noexcept { return isLost_; }
  /// NUL-terminated.
  const wchar_t* get() const noexcept { return large_ != nullptr ? large_ : small_; }
  std::wstring_view view() const noexcept { return {get(), size_}; }
  std::size_t size() const noexcept { return size_; }

 private:
  static constexpr std::size_t kSmall = 280;

  wchar_t* data() noexcept { return large_ != nullptr ? large_ : small_; }
  bool reserve(std::size_t size) noexcept;

  wchar_t* large_ = nullptr;
  std::size_t size_ = 0, capacity_ = kSmall - 1;
  bool isLost_ = false;
  wchar_t small_[kSmall] = L"";
};

template <typename Fill>
bool GrowingText::appendBy(Fill fill) noexcept {
  std::size_t room = 64;
  while (reserve(size_ + room)) {
    const std::size_t found = fill(data() + size_, static_cast<DWORD>(room));
    if (found == 0) break;
    if (found < room) {
      cutTo(size_ + found);
      return true;
    }
    room = found + 1;
  }
  cutTo(isLost_ ? 0 : size_);
  return false;
}

class WidePath {
 public:
  explicit WidePath(const char* name) noexcept;

  /// Check it before get() is used: ERROR_NO_UNICODE_TRANSLATION for a name that is not well-formed.
  DWORD error() const noexcept { return error_; }
  const wchar_t* get() const noexcept { return text_.get(); }
  std::wstring_view view() const noexcept { return text_.view(); }

  /// Makes it absolute, for functions that need the directory.
  bool complete() noexcept;

 private:
  bool convert(const char* name) noexcept;

  GrowingText text_;
  DWORD error_ = ERROR_SUCCESS;
};

/// Whether a name is in the namespace of devices, or of the prefix that turns off translation.
bool hasDevicePrefix(std::wstring_view name) noexcept;
/// Translates any name to the form with the prefix; devices get their own prefix. Returns false, with the
/// system's last error set, if the system cannot tell.
bool translate(std::wstring_view name, GrowingText& translated) noexcept;

}  // namespace vel::platform
