// Texts of message resources as single-byte texts. The bytes come from a file: they are neither aligned nor
// known to be well-formed UTF-16.
#include "messages/resource_text.h"

#include <cstring>

#include "platform/platform.h"

namespace vel::messages {
namespace {

using Utf16Text = std::basic_string<char16_t, std::char_traits<char16_t>, Allocator<char16_t>>;

constexpr char32_t kReplacement = 0xFFFD;

Utf16Text utf16Of(const MessageResource::Entry& entry) {
  Utf16Text text(entry.sizeInBytes / 2, u'\0');
  for (std::size_t i = 0; i < text.size(); ++i)
    text[i] = static_cast<char16_t>(entry.text[2 * i] | entry.text[2 * i + 1] << 8);
  return text;
}

/// The characters as bytes, if all of them are ASCII; mostly they are.
bool takeAscii(const MessageResource::Entry& entry, String& text) {
  text.resize(entry.sizeInBytes / 2);
  unsigned int all = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto unit = static_cast<unsigned int>(entry.text[2 * i] | entry.text[2 * i + 1] << 8);
    text[i] = static_cast<char>(static_cast<unsigned char>(unit));
    all |= unit;
  }
  return all < 0x80;
}

String bytesOf(const MessageResource::Entry& entry) {
  String text(entry.sizeInBytes, '\0');
  std::memcpy(text.data(), entry.text, entry.sizeInBytes);
  return text;
}

bool isHighSurrogate(char16_t unit) {
  return (unit & 0xFC00) == 0xD800;
}
bool isLowSurrogate(char16_t unit) {
  return (unit & 0xFC00) == 0xDC00;
}

/// The code point at `position`, which moves behind it; a surrogate without its pair is replaced.
char32_t takeCodePoint(const Utf16Text& text, std::size_t& position) {
  const char16_t unit = text[position++];
  if (!isHighSurrogate(unit)) return isLowSurrogate(unit) ? kReplacement : unit;
  if (position == text.size() || !isLowSurrogate(text[position])) return kReplacement;
  const char16_t low = text[position++];
  return 0x10000 + ((static_cast<char32_t>(unit) & 0x3FF) << 10) + (low & 0x3FFU);
}

void appendUtf8(String& out, char32_t c) {
  const auto put = [&out](char32_t byte) {
    out.push_back(static_cast<char>(static_cast<unsigned char>(byte)));
  };
  const auto putTail = [&put, c](unsigned shift) { put(0x80 | ((c >> shift) & 0x3F)); };
  if (c < 0x80) {
    put(c);
  } else if (c < 0x800) {
    put(0xC0 | (c >> 6));
    putTail(0);
  } else if (c < 0x10000) {
    put(0xE0 | (c >> 12));
    putTail(6);
    putTail(0);
  } else {
    put(0xF0 | (c >> 18));
    putTail(12);
    putTail(6);
    putTail(0);
  }
}

String toUtf8(const Utf16Text& text) {
  String out;
  out.reserve(text.size() * 3);
  for (std::size_t position = 0; position < text.size();) appendUtf8(out, takeCodePoint(text, position));
  return out;
}

String toCodePage(const Utf16Text& text) {
  // No single- or multi-byte code page of a system needs more than four bytes for a unit.
  String out(text.size() * 4, '\0');
  out.resize(platform::utf16ToAnsi(text.data(), text.size(), out.data(), out.size()));
  return out;
}

}  // namespace

String utf8TextOf(const MessageResource::Entry& entry) {
  if (!entry.unicode) return bytesOf(entry);
  String text;
  return takeAscii(entry, text) ? text : toUtf8(utf16Of(entry));
}

String ansiTextOf(const MessageResource::Entry& entry) {
  if (!entry.unicode || platform::ansiIsUtf8()) return utf8TextOf(entry);
  return toCodePage(utf16Of(entry));
}

}  // namespace vel::messages
