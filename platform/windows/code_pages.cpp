// The process's ANSI and OEM code pages, and conversion to them by the system.
#include <algorithm>
#include <climits>

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include "platform/code_pages.h"
#include "platform/windows/native_text.h"

namespace vel::platform {

namespace {

/// The numbers of the other code pages are CCSIDs themselves; that of UTF-8, 65001, is not.
constexpr std::uint32_t kCcsidOfUtf8 = 1208;

}  // namespace

std::uint32_t ansiCodePage() noexcept {
  return textCodePage() == CP_UTF8 ? kCcsidOfUtf8 : GetACP();
}

std::uint32_t oemCodePage() noexcept {
  return textCodePage() == CP_UTF8 ? kCcsidOfUtf8 : GetOEMCP();
}

std::size_t utf16ToCodePage(std::uint32_t codePage, const char16_t* text, std::size_t length, char* out,
                            std::size_t capacity) noexcept {
  // With a capacity of 0 the system would return the required size instead.
  if (length > INT_MAX || capacity == 0) return 0;
  const auto room = static_cast<int>(std::min<std::size_t>(capacity, INT_MAX));
  const int count = WideCharToMultiByte(codePage, 0, reinterpret_cast<const wchar_t*>(text),
                                        static_cast<int>(length), out, room, nullptr, nullptr);
  return static_cast<std::size_t>(count);
}

}  // namespace vel::platform
