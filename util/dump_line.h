// Defines the layout of a line of a dump, for all that write or parse one. A line consists of an optional
// address, a group of digits per byte, a bar, and the bytes as characters. Lines are written into the
// caller's memory, one table look-up and one store per group, so that formatting keeps up with the speed of
// memory.
//
//   00000010: 41 42 43 44 45 46 47 48  49 4A __ __ __ __ __ __ | ABCDEFGHIJ______
//   00000008: 01000001 00001010 ________ ________  ________ ________ ________ ________ | A.______
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <utility>

#include "base/byte_blocks.h"
#include "base/digits.h"

namespace vel::util {

template <std::size_t size>
using GroupTable = std::array<std::array<char, size>, 256>;

/// Two digits and a blank for every byte, and one more blank, so that a group is written by one store of four
/// bytes.
constexpr GroupTable<4> makeHexGroups() {
  GroupTable<4> table{};
  for (std::size_t byte = 0; byte < table.size(); ++byte) {
    const auto digits = hexPair(static_cast<unsigned char>(byte));
    table[byte] = {digits[0], digits[1], ' ', ' '};
  }
  return table;
}

/// Eight digits for every byte, the highest bit first; the blank is a second store.
constexpr GroupTable<8> makeBinaryGroups() {
  GroupTable<8> table{};
  for (std::size_t byte = 0; byte < table.size(); ++byte)
    for (std::size_t bit = 0; bit < 8; ++bit) table[byte][bit] = (byte >> (7 - bit) & 1) != 0 ? '1' : '0';
  return table;
}

inline constexpr GroupTable<4> kHexGroups = makeHexGroups();
inline constexpr GroupTable<8> kBinaryGroups = makeBinaryGroups();
/// Fills the groups and characters of bytes that a short line does not have.
inline constexpr char kMissing = '_';

/// The two forms of a dump: each byte has two hexadecimal or eight binary digits.
struct HexForm {
  static constexpr std::size_t kBytes = 16;
  static constexpr std::size_t kDigits = 2;
  static constexpr int kBase = 16;
  /// Writes one character more than kGroupWidth; the next group, the bar or the middle blank overwrites it.
  static void writeGroup(char* out, std::uint8_t byte) { std::memcpy(out, kHexGroups[byte].data(), 4); }
};
struct BinaryForm {
  static constexpr std::size_t kBytes = 8;
  static constexpr std::size_t kDigits = 8;
  static constexpr int kBase = 2;
  static void writeGroup(char* out, std::uint8_t byte) {
    std::memcpy(out, kBinaryGroups[byte].data(), kDigits);
    out[kDigits] = ' ';
  }
};

/// Sizes and offsets within the data part of a line, which follows the address.
template <typename Form>
struct LineLayout {
  static constexpr std::size_t kGroupWidth = Form::kDigits + 1;
  /// The offset of "| ".
  static constexpr std::size_t kBar = Form::kBytes * kGroupWidth + 1;
  static constexpr std::size_t kCharacters = kBar + 2;
  /// The length of the data part, which does not depend on the number of bytes.
  static constexpr std::size_t kLength = kCharacters + Form::kBytes;
  /// The length of a line with an address of 16 digits, without line break.
  static constexpr std::size_t kMaxLength = 16 + 2 + kLength;

  /// The offset of a group; there is one more blank in the middle of the line.
  static constexpr std::size_t groupAt(std::size_t index) {
    return index * kGroupWidth + (index < Form::kBytes / 2 ? 0 : 1);
  }
};

/// Writes the two digits of one byte of a value; byte 0 is the least significant.
inline void writeDigitsOf(char* out, std::uint64_t number, int byte) {
  std::memcpy(out, kHexGroups[number >> (8 * byte) & 0xFF].data(), 2);
}

/// Writes a value above 32 bits with 9 to 16 digits and returns the end.
inline char* writeLongDigits(char* out, std::uint64_t number) {
  int bytes = 5;
  while (bytes < 8 && number >> (8 * bytes) != 0) ++bytes;
  char* end = out;
  for (int byte = bytes - 1; byte >= 0; --byte, end += 2) writeDigitsOf(end, number, byte);
  // Addresses above 8 digits do not have leading zeros; bytes are written as pairs of digits, so a zero may
  // have to be removed.
  if (*out != '0') return end;
  std::memmove(out, out + 1, static_cast<std::size_t>(end - out - 1));
  return end - 1;
}

/// Writes "0000001F: ", with up to 16 digits where 8 do not suffice, and returns the end.
inline char* writeAddress(char* out, std::uint64_t offset) {
  if (offset >> 32 == 0) {
    // By far the most frequent case, therefore without a loop.
    writeDigitsOf(out, offset, 3);
    writeDigitsOf(out + 2, offset, 2);
    writeDigitsOf(out + 4, offset, 1);
    writeDigitsOf(out + 6, offset, 0);
    out += 8;
  } else {
    out = writeLongDigits(out, offset);
  }
  *out++ = ':';
  *out++ = ' ';
  return out;
}

/// Only printable ASCII is shown, so that a dump is the same in every locale.
constexpr char printableOrDot(std::uint8_t byte) {
  return byte >= 0x20 && byte < 0x7F ? static_cast<char>(byte) : '.';
}

/// Writes the bytes of a full line as characters. 16 bytes are compared and blended in one vector.
template <std::size_t count>
void writeCharacters(char* out, const std::uint8_t* data) {
  if constexpr (count == sizeof(ByteBlock)) {
    const ByteBlock block = blockAt(reinterpret_cast<const char*>(data));
    const auto isPrintable = reinterpret_cast<ByteBlock>(block - blockOf(0x20) < blockOf(0x7F - 0x20));
    const ByteBlock shown = (block & isPrintable) | (blockOf('.') & ~isPrintable);
    std::memcpy(out, &shown, count);
  } else {
    for (std::size_t i = 0; i < count; ++i) out[i] = printableOrDot(data[i]);
  }
}

/// Writes a full line: the pack expansion makes one store per group, with constant offsets and no loop.
template <typename Form, std::size_t... index>
void writeFullLine(char* out, const std::uint8_t* data, std::index_sequence<index...>) {
  using Layout = LineLayout<Form>;
  (Form::writeGroup(out + Layout::groupAt(index), data[index]), ...);
  writeCharacters<sizeof...(index)>(out + Layout::kCharacters, data);
}

/// Writes the last line of a dump, which may have fewer bytes.
template <typename Form>
void writeShortLine(char* out, const std::uint8_t* data, std::size_t count) {
  using Layout = LineLayout<Form>;
  for (std::size_t i = 0; i < count; ++i) Form::writeGroup(out + Layout::groupAt(i), data[i]);
  for (std::size_t i = count; i < Form::kBytes; ++i) {
    std::memset(out + Layout::groupAt(i), kMissing, Form::kDigits);
    out[Layout::groupAt(i) + Form::kDigits] = ' ';
  }
  for (std::size_t i = 0; i < count; ++i) out[Layout::kCharacters + i] = printableOrDot(data[i]);
  std::memset(out + Layout::kCharacters + count, kMissing, Form::kBytes - count);
}

/// Writes the data part of a line for at most Form::kBytes bytes and returns the end. Does not write a NUL.
template <typename Form>
char* writeData(char* out, const std::uint8_t* data, std::size_t count) {
  using Layout = LineLayout<Form>;
  if (count == Form::kBytes)
    writeFullLine<Form>(out, data, std::make_index_sequence<Form::kBytes>());
  else
    writeShortLine<Form>(out, data, count);
  // Groups overwrite the following character, so blank and bar are written last.
  out[Layout::groupAt(Form::kBytes / 2) - 1] = ' ';
  out[Layout::kBar] = '|';
  out[Layout::kBar + 1] = ' ';
  return out + Layout::kLength;
}

/// Writes a line with its address and line break and returns the end. `out` must have room for
/// LineLayout<Form>::kMaxLength + 1 characters.
template <typename Form>
char* writeLine(char* out, std::uint64_t offset, const std::uint8_t* data, std::size_t count) {
  out = writeData<Form>(writeAddress(out, offset), data, count);
  *out = '\n';
  return out + 1;
}

}  // namespace vel::util
