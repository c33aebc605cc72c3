// The characters and colours of bytes. Every byte is converted by itself, so pages of several bytes a
// character show their single bytes only.
#include "tools/veldump/line_painter.h"

#include <algorithm>
#include <iostream>

#include "base/utf.h"

namespace vel::veldump {

namespace {

constexpr const char* kNoStyle = "";

struct Range {
  char32_t first, last;
};

/// Characters that have no glyph of their own, change the direction of the text, or join the one before: they
/// would shift the characters after them.
constexpr Range kUnprintable[] = {
    {0, 0x1F},        {0x7F, 0x9F},     {0xAD, 0xAD},     {0x300, 0x36F},   {0x591, 0x5C7},
    {0x600, 0x605},   {0x610, 0x61C},   {0x64B, 0x65F},   {0xE31, 0xE31},   {0xE34, 0xE3A},
    {0xE47, 0xE4E},   {0x200B, 0x200F}, {0x2028, 0x202E}, {0x2060, 0x206F}, {0xD800, 0xF8FF},
    {0xFEFF, 0xFEFF}, {0xFFF0, 0xFFFF},
};

bool isPrintable(char32_t character) {
  return std::ranges::none_of(kUnprintable, [character](const Range& range) {
    return character >= range.first && character <= range.last;
  });
}

bool isBlank(char32_t character) {
  constexpr char32_t kNextLine = 0x85, kNoBreakSpace = 0xA0;
  return character == U' ' || (character >= U'\t' && character <= U'\r') || character == kNextLine ||
         character == kNoBreakSpace;
}

ByteKind kindOf(std::uint8_t byte, char32_t character) {
  if (byte == 0) return ByteKind::Zero;
  if (isBlank(character)) return ByteKind::Blank;
  if (isPrintable(character)) return ByteKind::Printable;
  return character < 0x20 || (character >= 0x7F && character <= 0x9F) ? ByteKind::Control : ByteKind::Other;
}

}  // namespace

LinePainter::LinePainter() : plain_(kNoStyle), marked_(kNoStyle) {
  styles_.fill(kNoStyle);
  for (unsigned int byte = 0; byte < 256; ++byte)
    show(static_cast<std::uint8_t>(byte), byte < 0x80 ? byte : kReplacementCharacter);
}

void LinePainter::show(std::uint8_t byte, char32_t character) {
  kinds_[byte] = kindOf(byte, character);
  if (!isPrintable(character)) character = U'.';
  char utf8[kMaxCharacter];
  shown_[byte].assign(utf8, encodeUtf8(character, utf8));
}

bool LinePainter::useCodePage(const VelClCCSID& ccsid) {
  const VelClCodePage2UnicodeConverter converter(ccsid);
  if (!converter.isSupported()) return false;
  for (unsigned int byte = 0; byte < 256; ++byte) {
    const char source = static_cast<char>(byte);
    const char* position = &source;
    char16_t units[8] = {};
    const std::size_t size =
        converter.convertBytes(reinterpret_cast<char*>(units), sizeof units, &position, 1);
    show(static_cast<std::uint8_t>(byte), size == sizeof units[0] ? units[0] : kReplacementCharacter);
  }
  isNeeded_ = true;
  return true;
}

void LinePainter::colorKinds(const VelClConsoleUI& ui) {
  // In the order of ByteKind.
  constexpr VelEnTextStyle kStyles[] = {VelEnTextStyle::PLAIN, VelEnTextStyle::GOOD, VelEnTextStyle::EMPHASIS,
                                        VelEnTextStyle::BAD, VelEnTextStyle::CAUTION};
  for (std::size_t i = 0; i < styles_.size(); ++i) styles_[i] = ui.style(std::cout, kStyles[i]);
  plain_ = styles_[static_cast<std::size_t>(ByteKind::Zero)];
  isNeeded_ = isNeeded_ || *plain_ != '\0';
}

void LinePainter::colorMarks(const VelClConsoleUI& ui) {
  plain_ = ui.style(std::cout, VelEnTextStyle::PLAIN);
  styles_.fill(plain_);
  marked_ = ui.style(std::cout, VelEnTextStyle::BAD);
  isNeeded_ = isNeeded_ || *plain_ != '\0';
}

}  // namespace vel::veldump
