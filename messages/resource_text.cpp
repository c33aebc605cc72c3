// Converts texts of message resources to single-byte texts. The bytes come from a file: they are neither
// aligned nor known to be well-formed UTF-16.
//
// Nearly all messages are ASCII, whose bytes are the same in UTF-8 and in every single-byte code
// page of a system. So each text is first copied as ASCII, four units at a time; only if that
// fails is it decoded as UTF-16 and converted.
#include "messages/resource_text.h"

#include <bit>
#include <cstring>

#include "base/utf.h"
#include "platform/languages.h"

namespace vel::messages {
namespace {

using Utf16Text = std::basic_string<char16_t, std::char_traits<char16_t>, Allocator<char16_t>>;

Utf16Text toUtf16(const MessageResource::Entry& entry) {
  Utf16Text text(entry.sizeInBytes / 2, u'\0');
  for (std::size_t i = 0; i < text.size(); ++i)
    text[i] = static_cast<char16_t>(entry.text[2 * i] | entry.text[2 * i + 1] << 8);
  return text;
}

static_assert(std::endian::native == std::endian::little);

/// Copies ASCII characters in fours and returns how many were copied. Stops before the first four that are
/// not all ASCII, and leaves a tail of up to three.
std::size_t copyAsciiInFours(const std::uint8_t* text, std::size_t length, char* out) noexcept {
  std::size_t i = 0;
  for (; i + 4 <= length; i += 4) {
    std::uint64_t units = 0;
    std::memcpy(&units, text + 2 * i, sizeof units);
    if ((units & 0xFF80FF80FF80FF80) != 0) break;
    // Squeezes out the high bytes, which are 0: 00dd00cc00bb00aa becomes 00ddddccccbbbbaa and then ddccbbaa.
    units |= units >> 8;
    const auto bytes = static_cast<std::uint32_t>((units & 0xFFFF) | (units >> 16 & 0xFFFF0000));
    std::memcpy(out + i, &bytes, sizeof bytes);
  }
  return i;
}

/// Copies a Unicode text as bytes. Returns false if not all of its
/// characters are ASCII; `out` must not be used then.
bool copyAscii(const MessageResource::Entry& entry, char* out) noexcept {
  const std::size_t length = entry.sizeInBytes / 2;
  for (std::size_t i = copyAsciiInFours(entry.text, length, out); i != length; ++i) {
    const int unit = entry.text[2 * i] | entry.text[2 * i + 1] << 8;
    if (unit >= 0x80) return false;
    out[i] = static_cast<char>(unit);
  }
  return true;
}

String storedBytes(const MessageResource::Entry& entry) {
  String text(entry.sizeInBytes, '\0');
  std::memcpy(text.data(), entry.text, entry.sizeInBytes);
  return text;
}

/// Decodes the code point at `position` and moves past it. An unpaired
/// surrogate yields the replacement character.
char32_t decodeCodePoint(const Utf16Text& text, std::size_t& position) {
  const char16_t* const units = text.data() + position;
  const std::size_t count = utf16Length(units, text.size() - position);
  position += count;
  if (count == 2) return characterOfPair(units[0], units[1]);
  return isSurrogate(units[0]) ? kReplacementCharacter : units[0];
}

String toUtf8(const Utf16Text& text) {
  String out;
  // A unit becomes at most three bytes, a pair of surrogates four.
  out.reserve(text.size() * 3);
  for (std::size_t position = 0; position < text.size();) {
    char bytes[kMaxUtf8Bytes];
    out.append(bytes, encodeUtf8(decodeCodePoint(text, position), bytes));
  }
  return out;
}

String toCodePage(const Utf16Text& text) {
  // No code page of a system needs more than four bytes for a unit.
  String out(text.size() * 4, '\0');
  out.resize(platform::utf16ToAnsi(text.data(), text.size(), out.data(), out.size()));
  return out;
}

}  // namespace

String utf8TextOf(const MessageResource::Entry& entry) {
  if (!entry.unicode) return storedBytes(entry);
  String text(entry.sizeInBytes / 2, '\0');
  return copyAscii(entry, text.data()) ? text : toUtf8(toUtf16(entry));
}

AnsiText::AnsiText(const MessageResource::Entry& entry)
    : data_(reinterpret_cast<const char*>(entry.text)), size_(entry.sizeInBytes) {
  if (!entry.unicode) return;
  data_ = inline_;
  size_ /= 2;
  if (size_ <= kInlineSize && copyAscii(entry, inline_)) return;
  converted_ = platform::ansiIsUtf8() ? utf8TextOf(entry) : toCodePage(toUtf16(entry));
  data_ = converted_.data();
  size_ = converted_.size();
}

}  // namespace vel::messages
