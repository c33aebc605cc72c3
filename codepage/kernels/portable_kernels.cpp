// The kernels in portable C++. Loops over fixed steps are written so that the compiler can vectorise them
// with the vectors that every processor has.
//
// The UTF-8 kernels avoid a branch per byte by working on 64-bit words, as several characters at once ("SIMD
// within a register"): one test tells whether eight bytes are ASCII, and shifts and masks spread or pack
// them. Only characters that are not ASCII are decoded one by one, all of them with plain arithmetic.
#include <bit>

#include "codepage/conversion.h"
#include "codepage/kernels/kernels.h"

// Compiled for every processor.
#define VEL_VECTOR
#include "codepage/kernels/block_moves.h"

namespace vel::codepage {

namespace {

std::uint64_t readWord(const char* from) {
  std::uint64_t word;
  std::memcpy(&word, from, sizeof word);
  return word;
}

/// Reads eight bytes as one word: one load and shifts are faster than eight loads.
void lookUpBytes(char* target, const char* source, std::size_t size, const std::uint16_t* table) noexcept {
  constexpr std::size_t kBytes = sizeof(std::uint64_t);
  std::size_t i = 0;
  for (; i + kBytes <= size; i += kBytes) {
    const std::uint64_t bytes = readWord(source + i);
    for (std::size_t k = 0; k < kBytes; ++k)
      writeUnit(target + (i + k) * kUnitSize, table[bytes >> 8 * k & 0xFF]);
  }
  for (; i < size; ++i) writeUnit(target + i * kUnitSize, table[static_cast<unsigned char>(source[i])]);
}

void mapUnits(char* __restrict target, const char* __restrict source, std::size_t count,
              const unsigned char* __restrict table) noexcept {
  for (std::size_t i = 0; i < count; ++i) {
    const std::uint16_t unit = readUnit(source + i * kUnitSize);
    target[i] = static_cast<char>(table[table[unit >> 8] * 256U + (unit & 0xFFU)]);
  }
}

// ---- UTF-8 to UCS-2 --------------------------------------------------------------------------

/// The kernels below read up to a block of source and write up to a block of target in each step, and then
/// advance by the part that is used. They run only while a whole block is left of both, so that no step needs
/// a bounds check.
constexpr std::size_t kBlock = 32;

bool hasBlock(const Cursor& cursor) {
  return cursor.sourceSize() >= kBlock && cursor.targetSize() >= kBlock;
}

/// Widens eight bytes to eight units within two words, for example 44434241 to 0044004300420041. A loop over
/// the bytes would be vectorised badly among the other code.
void widenEight(char* target, std::uint64_t bytes) {
  for (std::size_t half = 0; half < 2; ++half) {
    std::uint64_t units = bytes >> (half * 32) & 0xFFFFFFFF;
    units = (units | units << 16) & 0x0000FFFF0000FFFF;
    units = (units | units << 8) & 0x00FF00FF00FF00FF;
    std::memcpy(target + half * sizeof units, &units, sizeof units);
  }
}

/// Decodes 16 ASCII bytes; or else those of the first eight that precede the first other byte, returning
/// false if that byte is next. Always writes eight units, of which only the decoded ones are used.
bool decodeAscii(Cursor& cursor) {
  constexpr std::uint64_t kTopBits = 0x8080808080808080;
  const std::uint64_t first = readWord(cursor.source);
  const std::uint64_t second = readWord(cursor.source + 8);
  if (((first | second) & kTopBits) == 0) {
    widenEight(cursor.target, first);
    widenEight(cursor.target + 8 * kUnitSize, second);
    cursor.source += 16;
    cursor.target += 16 * kUnitSize;
    return true;
  }
  widenEight(cursor.target, first);
  const auto count = static_cast<std::size_t>(std::countr_zero(first & kTopBits)) / 8;
  cursor.source += count;
  cursor.target += count * kUnitSize;
  return count == 8;
}

/// Writes the value of two or three bytes; returns false, with nothing done, if it is not one unit. Trailing
/// bytes are not checked: utf8_decoder.cpp has the same results for them.
bool decodeUnit(Cursor& cursor, std::uint32_t value, std::size_t size) {
  if (value > 0xFFFF) return false;
  writeUnit(cursor.target, static_cast<std::uint16_t>(value));
  cursor.source += size;
  cursor.target += kUnitSize;
  return true;
}

/// Writes the value of four bytes as a surrogate pair; returns false, with nothing done, for one that is not
/// a pair.
bool decodePair(Cursor& cursor, std::uint32_t value) {
  if (value < 0x10000 || value > 0x10FFFF) return false;
  writeUnit(cursor.target, static_cast<std::uint16_t>(0xD7C0 + (value >> 10)));
  writeUnit(cursor.target + kUnitSize, static_cast<std::uint16_t>(0xDC00 + (value & 0x3FF)));
  cursor.source += 4;
  cursor.target += 2 * kUnitSize;
  return true;
}

/// Decodes a character of two to four bytes; returns false, with nothing done, for any other. The constants
/// and sums are those of utf8_decoder.cpp.
bool decodeSequence(Cursor& cursor) {
  const auto* const text = reinterpret_cast<const unsigned char*>(cursor.source);
  const std::uint32_t lead = text[0];
  if (lead < 0xC0 || lead > 0xF4) return false;
  const std::uint32_t two = (lead << 6) + text[1];
  if (lead < 0xE0) return decodeUnit(cursor, two - 0x3080, 2);
  const std::uint32_t three = (two << 6) + text[2];
  if (lead < 0xF0) return decodeUnit(cursor, three - 0xE2080, 3);
  return decodePair(cursor, (three << 6) + text[3] - 0x3C82080);
}

/// Alternates between runs of ASCII and of other characters. Returns false if the caller must go on, because
/// the source or target is nearly used up or a character is ill-formed.
bool decodeBlocks(Cursor& cursor) {
  if (decodeAscii(cursor)) return true;
  do {
    if (!hasBlock(cursor) || !decodeSequence(cursor)) return false;
  } while (static_cast<signed char>(*cursor.source) < 0);
  return true;
}

void decodeUtf8(Cursor& cursor) noexcept {
  // A local copy can live in registers: through a reference, the compiler must assume that writes to the
  // target change the cursor.
  Cursor local = cursor;
  while (hasBlock(local) && decodeBlocks(local)) {
  }
  cursor = local;
}

// ---- UCS-2 to UTF-8 --------------------------------------------------------------------------

/// Packs four units below 0x100 into four bytes.
void narrowFour(char* target, std::uint64_t units) {
  units = (units | units >> 8) & 0x0000FFFF0000FFFF;
  const auto bytes = static_cast<std::uint32_t>(units | units >> 16);
  std::memcpy(target, &bytes, sizeof bytes);
}

constexpr std::size_t kUnitsInWord = 4;

/// Encodes four units below 0x800. Each is written as two bytes, and the target advances by one or two of
/// them. The length is computed, not compared, so that the compiler does not make it a branch, which mixed
/// text would mispredict.
void encodeUpToTwoBytes(Cursor& cursor, std::uint64_t units) {
  for (std::size_t i = 0; i < kUnitsInWord; ++i) {
    const std::uint32_t unit = units >> (16 * i) & 0x7FF;
    const std::uint32_t isTwo = (0x7F - unit) >> 31;
    const std::uint32_t two = 0x80C0 | unit >> 6 | (unit & 0x3F) << 8;
    writeUnit(cursor.target, static_cast<std::uint16_t>(unit ^ ((two ^ unit) & (0 - isTwo))));
    cursor.target += 1 + isTwo;
  }
  cursor.source += kUnitsInWord * kUnitSize;
}

/// Encodes 16 ASCII units, or four units below 0x800; returns false, with nothing done, if one of the next
/// four is above.
bool encodeRun(Cursor& cursor) {
  constexpr std::uint64_t kNotAscii = 0xFF80FF80FF80FF80;
  constexpr std::uint64_t kAboveTwoBytes = 0xF800F800F800F800;
  const std::uint64_t first = readWord(cursor.source);
  const std::uint64_t second = readWord(cursor.source + 8);
  const std::uint64_t third = readWord(cursor.source + 16);
  const std::uint64_t fourth = readWord(cursor.source + 24);
  if (((first | second | third | fourth) & kNotAscii) == 0) {
    narrowFour(cursor.target, first);
    narrowFour(cursor.target + 4, second);
    narrowFour(cursor.target + 8, third);
    narrowFour(cursor.target + 12, fourth);
    cursor.source += 4 * kUnitsInWord * kUnitSize;
    cursor.target += 4 * kUnitsInWord;
    return true;
  }
  if ((first & kAboveTwoBytes) != 0) return false;
  encodeUpToTwoBytes(cursor, first);
  return true;
}

/// Writes four bytes, the lowest first, and advances past the first `size` of them. Four bytes are a
/// surrogate pair.
void writeSequence(Cursor& cursor, std::uint32_t bytes, std::size_t size) {
  std::memcpy(cursor.target, &bytes, sizeof bytes);
  cursor.target += size;
  cursor.source += size == 4 ? 2 * kUnitSize : kUnitSize;
}

/// Encodes a surrogate pair; returns false, with nothing done, for an unpaired surrogate.
bool encodePair(Cursor& cursor, std::uint32_t high) {
  const std::uint32_t low = readUnit(cursor.source + kUnitSize);
  if (!isHighSurrogate(high) || !isLowSurrogate(low)) return false;
  const std::uint32_t value = decodeSurrogatePair(high, low);
  writeSequence(
      cursor,
      0x808080F0 | value >> 18 | (value >> 12 & 0x3F) << 8 | (value >> 6 & 0x3F) << 16 | (value & 0x3F) << 24,
      4);
  return true;
}

void encodeThreeBytes(Cursor& cursor, std::uint32_t unit) {
  writeSequence(cursor, 0x8080E0 | unit >> 12 | (unit >> 6 & 0x3F) << 8 | (unit & 0x3F) << 16, 3);
}

/// Encodes a character; returns false, with nothing done, for an invalid one, whose replacement is the
/// caller's decision. The most frequent range is tested first: shorter ones mostly went through encodeRun.
bool encodeCharacter(Cursor& cursor) {
  const std::uint32_t unit = readUnit(cursor.source);
  if (unit >= 0x800 && unit < 0xD800) {
    encodeThreeBytes(cursor, unit);
    return true;
  }
  if (unit < 0x80) {
    *cursor.target++ = static_cast<char>(unit);
    cursor.source += kUnitSize;
    return true;
  }
  if (unit < 0x800) {
    writeSequence(cursor, 0x80C0 | unit >> 6 | (unit & 0x3F) << 8, 2);
    return true;
  }
  if (unit < 0xE000) return encodePair(cursor, unit);
  if (unit >= 0xFFFE || (unit >= 0xFDD0 && unit <= 0xFDEF)) return false;
  encodeThreeBytes(cursor, unit);
  return true;
}

/// Alternates between runs of short characters and single longer ones. Returns false if the caller must go
/// on.
bool encodeBlocks(Cursor& cursor) {
  if (encodeRun(cursor)) return true;
  do {
    if (!hasBlock(cursor) || !encodeCharacter(cursor)) return false;
  } while (readUnit(cursor.source) >= 0x800);
  return true;
}

void encodeUtf8(Cursor& cursor) noexcept {
  Cursor local = cursor;
  while (hasBlock(local) && encodeBlocks(local)) {
  }
  cursor = local;
}

// ---- Mixed bytes -----------------------------------------------------------------------------

/// Converts the empty prefix. Without wide vectors nothing is faster than the walk over single
/// characters that follows.
void decodeMixed(Cursor&, const VelStDoubleByteTable&) noexcept {}
void decodeShifted(Cursor&, const VelStDoubleByteTable&, bool&) noexcept {}

}  // namespace

constinit const Kernels kPortableKernels{&widen,      &narrow,      &swap,          &lookUpBytes, &decodeUtf8,
                                         &encodeUtf8, &decodeMixed, &decodeShifted, &mapUnits};

}  // namespace vel::codepage
