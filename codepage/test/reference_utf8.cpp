#include "codepage/test/reference_utf8.h"

namespace {

unsigned int byteAt(std::string_view text, std::size_t i) {
  return static_cast<unsigned char>(text[i]);
}
unsigned int unitAt(std::string_view text, std::size_t i) {
  return byteAt(text, i) + 256 * byteAt(text, i + 1);
}

std::size_t sizeFrom(unsigned int lead) {
  std::size_t size = 1;
  for (const unsigned int first : {0xC0U, 0xE0U, 0xF0U, 0xF8U, 0xFCU}) size += lead >= first;
  return size;
}

std::u16string unitsOf(std::string_view character) {
  constexpr std::uint32_t kOffsets[] = {0, 0x3080, 0xE2080, 0x3C82080, 0xFA082080, 0x82082080};
  std::uint32_t value = 0;
  for (std::size_t i = 0; i < character.size(); ++i) value = (value << 6) + byteAt(character, i);
  value -= kOffsets[character.size() - 1];
  if (value > 0x7FFFFFFF) return u"\xFFFD";
  if (value < 0x10000) return {static_cast<char16_t>(value)};
  return {static_cast<char16_t>(0xD800 + (value - 0x10000) / 0x400),
          static_cast<char16_t>(0xDC00 + value % 0x400)};
}

std::string encoded(std::uint32_t value) {
  if (value < 0x80) return {static_cast<char>(value)};
  const int trailing = value < 0x800 ? 1 : value < 0x10000 ? 2 : 3;
  std::string bytes = {static_cast<char>((0xFF00 >> (trailing + 1)) + (value >> 6 * trailing))};
  for (int i = trailing; i-- > 0;) bytes += static_cast<char>(0x80 + (value >> 6 * i) % 64);
  return bytes;
}

}  // namespace

Outcome referenceUtf8ToUcs2(std::string_view source, std::size_t targetSize) {
  Outcome outcome;
  while (outcome.consumed < source.size()) {
    const std::size_t size = sizeFrom(byteAt(source, outcome.consumed));
    if (size > source.size() - outcome.consumed) return incomplete(outcome.bytes, outcome.consumed);
    const std::string units = unitBytes(unitsOf(source.substr(outcome.consumed, size)));
    outcome.consumed += size;
    if (units.size() > targetSize - outcome.bytes.size()) return tooBig(outcome.bytes, outcome.consumed);
    outcome.bytes += units;
  }
  return outcome;
}

Outcome referenceUcs2ToUtf8(std::string_view source, std::size_t targetSize) {
  const std::size_t end = source.size() / 2 * 2;
  Outcome outcome;
  while (outcome.consumed < end) {
    std::uint32_t value = unitAt(source, outcome.consumed);
    outcome.consumed += 2;
    if (value >= 0xD800 && value < 0xE000) {
      const bool isPair = value < 0xDC00 && outcome.consumed < end &&
                          unitAt(source, outcome.consumed) / 0x400 == 0xDC00 / 0x400;
      value = isPair ? 0x10000 + value % 0x400 * 0x400 + unitAt(source, outcome.consumed) % 0x400 : 0xFFFF;
      if (isPair) outcome.consumed += 2;
    }
    if ((value >= 0xFDD0 && value <= 0xFDEF) || value == 0xFFFE) value = 0xFFFF;
    if (encoded(value).size() > targetSize - outcome.bytes.size())
      return tooBig(outcome.bytes, outcome.consumed);
    outcome.bytes += encoded(value);
  }
  return end == source.size() ? outcome : incomplete(outcome.bytes, outcome.consumed);
}
