// The process's code pages.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vel::platform {

/// The process's ANSI and OEM code page. POSIX: the CCSID of the locale's code set for both, 1208 for UTF-8;
/// 0 for a code set without CCSID. If the program sets no locale, the environment decides.
std::uint32_t ansiCodePage() noexcept;
std::uint32_t oemCodePage() noexcept;
/// Converts to one of these code pages, with "?" for unmappable characters. Returns the number of bytes
/// written, without terminator; 0 when the text is empty, the target too small or the code page unknown.
std::size_t utf16ToCodePage(std::uint32_t codePage, const char16_t* text, std::size_t length, char* out,
                            std::size_t capacity) noexcept;

}  // namespace vel::platform
