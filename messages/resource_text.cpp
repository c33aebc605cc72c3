// Converts texts of message resources to the process's ANSI code page or to UTF-8. The bytes were read from a
// file: they are neither aligned nor known to be well-formed UTF-16.
//
// Nearly all messages are ASCII, whose bytes are the same in UTF-8 and in every ANSI code page. So a Unicode
// text is first copied as ASCII, four units at a time; only if that fails, or if the text is too long for
// AnsiText's own buffer, is it decoded as UTF-16 and converted.
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

// toUtf16 is independent of byte order, but copyAsciiBlocks expects the first unit in a word's low bits.
static_assert(std::endian::native == std::endian::little);

/// Copies blocks of four ASCII characters and returns how many characters were copied. Stops before the first
/// block that is not all ASCII, and leaves a tail of up to three units.
std::size_t copyAsciiBlocks(const std::uint8_t* text, std::size_t unitCount, char* out) noexcept {
  std::size_t i = 0;
  for (; i + 4 <= unitCount; i += 4) {
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

/// Copies a Unicode text as bytes. Returns false, with `out` partly overwritten, if not all of its
/// characters are ASCII.
bool copyAscii(const MessageResource::Entry& entry, char* out) noexcept {
  const std::size_t length = entry.sizeInBytes / 2;
  for (std::size_t i = copyAsciiBlocks(entry.text, length, out); i != length; ++i) {
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

/// Decodes the code point at `position` and moves past it. An unpaired surrogate yields the replacement
/// character.
char32_t decodeCodePoint(const Utf16Text& text, std::size_t& position) {
  const char16_t* const units = text.data() + position;
  const std::size_t count = unitsOfFirstCharacter(units, text.size() - position);
  position += count;
  if (count == 2) return decodeSurrogatePair(units[0], units[1]);
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

String toAnsi(const Utf16Text& text) {
  // No ANSI code page needs more than four bytes for a unit.
  String out(text.size() * 4, '\0');
  out.resize(platform::utf16ToAnsi(text.data(), text.size(), out.data(), out.size()));
  return out;
}

}  // namespace

String storedOrUtf8Text(const MessageResource::Entry& entry) {
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
  converted_ = platform::ansiIsUtf8() ? storedOrUtf8Text(entry) : toAnsi(toUtf16(entry));
  data_ = converted_.data();
  size_ = converted_.size();
}

}  // namespace vel::messages
