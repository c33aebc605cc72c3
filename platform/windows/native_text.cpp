// Which code page narrow texts have, and their conversion by the system.
#include "platform/windows/native_text.h"

#include <algorithm>
#include <atomic>
#include <climits>
#include <cstring>

#include "base/utf.h"
#include "platform/text_encoding.h"

namespace vel::platform {

namespace {

constinit std::atomic<bool> utf8IsOn = false;

/// The code page of mainland China that has all characters. Like UTF-8 it has no default character.
constexpr UINT kGb18030 = 54936;

bool hasAllCharacters(UINT codePage) noexcept {
  return codePage == CP_UTF8 || codePage == kGb18030;
}

/// Encodes one character of one or two units; "?" if the code page lacks it. The default character of a code
/// page need not be "?", so the system tells whether it was used.
std::size_t encode(std::wstring_view character, UINT codePage, Similar similar, char (&out)[8]) noexcept {
  const bool isComplete = hasAllCharacters(codePage);
  const DWORD flags = isComplete                   ? DWORD{WC_ERR_INVALID_CHARS}
                      : similar == Similar::Refuse ? DWORD{WC_NO_BEST_FIT_CHARS}
                                                   : DWORD{0};
  BOOL isUnmappable = FALSE;
  const int count = WideCharToMultiByte(codePage, flags, character.data(), static_cast<int>(character.size()),
                                        out, sizeof out, nullptr, isComplete ? nullptr : &isUnmappable);
  if (count > 0 && isUnmappable == FALSE) return static_cast<std::size_t>(count);
  out[0] = '?';
  return 1;
}

std::size_t unitsOfFirst(std::wstring_view text) noexcept {
  return text.size() > 1 && isHighSurrogate(text[0]) && isLowSurrogate(text[1]) ? 2 : 1;
}

}  // namespace

void useUtf8() noexcept {
  utf8IsOn.store(true, std::memory_order_relaxed);
}

UINT textCodePage() noexcept {
  return utf8IsOn.load(std::memory_order_relaxed) ? UINT{CP_UTF8} : GetACP();
}

UINT fileNameCodePage() noexcept {
  const UINT codePage = textCodePage();
  return codePage == CP_UTF8 || AreFileApisANSI() != FALSE ? codePage : GetOEMCP();
}

bool WideBuffer::reserve(std::size_t capacity) noexcept {
  if (capacity <= capacity_) return true;
  release();
  // The process's heap is the system's own here: an allocator of the program must not be called by functions
  // that report its failures.
  auto* const block = static_cast<wchar_t*>(HeapAlloc(GetProcessHeap(), 0, capacity * sizeof(wchar_t)));
  if (block == nullptr) return false;
  block[0] = L'\0';
  text_ = block;
  capacity_ = capacity;
  return true;
}

void WideBuffer::release() noexcept {
  if (text_ != usual_) HeapFree(GetProcessHeap(), 0, text_);
  text_ = usual_;
  usual_[0] = L'\0';
  capacity_ = kUsualSize;
}

WideText::WideText(const char* text, UINT codePage) noexcept : error_(ERROR_SUCCESS) {
  const std::size_t size = text != nullptr ? std::strlen(text) + 1 : 1;
  // No text has more units than bytes.
  if (size > INT_MAX || !buffer_.reserve(size)) {
    error_ = ERROR_NOT_ENOUGH_MEMORY;
    return;
  }
  if (MultiByteToWideChar(codePage, MB_ERR_INVALID_CHARS, text != nullptr ? text : "", static_cast<int>(size),
                          buffer_.get(), static_cast<int>(size)) != 0)
    return;
  error_ = ERROR_NO_UNICODE_TRANSLATION;
  buffer_.get()[0] = L'\0';
}

DWORD narrowText(std::wstring_view text, UINT codePage, char* out, std::size_t capacity) noexcept {
  if (capacity == 0 || text.size() > INT_MAX) return ERROR_INSUFFICIENT_BUFFER;
  out[0] = '\0';
  // The system refuses an empty text.
  if (text.empty()) return ERROR_SUCCESS;
  const bool isComplete = hasAllCharacters(codePage);
  BOOL isUnmappable = FALSE;
  const int count = WideCharToMultiByte(codePage, isComplete ? WC_ERR_INVALID_CHARS : WC_NO_BEST_FIT_CHARS,
                                        text.data(), static_cast<int>(text.size()), out,
                                        static_cast<int>(std::min<std::size_t>(capacity - 1, INT_MAX)),
                                        nullptr, isComplete ? nullptr : &isUnmappable);
  const DWORD error = count > 0       ? DWORD{ERROR_SUCCESS}
                      : capacity == 1 ? DWORD{ERROR_INSUFFICIENT_BUFFER}
                                      : GetLastError();
  out[error == ERROR_SUCCESS && isUnmappable == FALSE ? count : 0] = '\0';
  return isUnmappable == FALSE ? error : DWORD{ERROR_NO_UNICODE_TRANSLATION};
}

std::size_t readableText(std::wstring_view text, UINT codePage, Similar similar, char* out,
                         std::size_t capacity) noexcept {
  std::size_t written = 0;
  while (!text.empty()) {
    const std::size_t units = unitsOfFirst(text);
    char bytes[8];
    const std::size_t count = encode(text.substr(0, units), codePage, similar, bytes);
    // Stop before a character that does not fit: part of one would be ill-formed.
    if (count > capacity - written) break;
    std::memcpy(out + written, bytes, count);
    written += count;
    text.remove_prefix(units);
  }
  return written;
}

}  // namespace vel::platform
