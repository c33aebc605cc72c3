// The inner loops in plain C++, written so that the compiler can use the vectors that every processor has.
#include <bit>

#include "codepage/conversion.h"
#include "codepage/kernels.h"

namespace vel::codepage {

namespace {

std::uint64_t readWord(const char* from) {
  std::uint64_t word;
  std::memcpy(&word, from, sizeof word);
  return word;
}

void widen(char* __restrict target, const char* __restrict source, std::size_t count) noexcept {
  for (std::size_t i = 0; i < count; ++i)
    writeUnit(target + i * kUnitSize, static_cast<unsigned char>(source[i]));
}

void narrow(char* __restrict target, const char* __restrict source, std::size_t count) noexcept {
  for (std::size_t i = 0; i < count; ++i) target[i] = static_cast<char>(readUnit(source + i * kUnitSize));
}

void swap(char* __restrict target, const char* __restrict source, std::size_t count) noexcept {
  for (std::size_t i = 0; i < count; ++i) {
    const std::uint16_t unit = readUnit(source + i * kUnitSize);
    writeUnit(target + i * kUnitSize, static_cast<std::uint16_t>(unit << 8 | unit >> 8));
  }
}

/// Eight bytes are read as one number.
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

// ---- UTF-8 to UCS-2 --------------------------------------------------------------------------

/// The loops below look at a piece of the source, and write a piece of the target, of which only a part may
/// count.
constexpr std::size_t kPiece = 32;

bool hasPieces(const Progress& progress) {
  return progress.sourceSize() >= kPiece && progress.targetSize() >= kPiece;
}

/// Eight bytes to eight units, spread within numbers: compilers make worse of a loop among other code.
void widenEight(char* target, std::uint64_t bytes) {
  for (std::size_t half = 0; half < 2; ++half) {
    std::uint64_t units = bytes >> (half * 32) & 0xFFFFFFFF;
    units = (units | units << 16) & 0x0000FFFF0000FFFF;
    units = (units | units << 8) & 0x00FF00FF00FF00FF;
    std::memcpy(target + half * sizeof units, &units, sizeof units);
  }
}

/// All of 16 bytes, or those before the first of eight that is not ASCII. False when that one is next.
bool decodeAscii(Progress& progress) {
  constexpr std::uint64_t kTopBits = 0x8080808080808080;
  const std::uint64_t first = readWord(progress.source);
  const std::uint64_t second = readWord(progress.source + 8);
  if (((first | second) & kTopBits) == 0) {
    widenEight(progress.target, first);
    widenEight(progress.target + 8 * kUnitSize, second);
    progress.source += 16;
    progress.target += 16 * kUnitSize;
    return true;
  }
  widenEight(progress.target, first);
  const auto count = static_cast<std::size_t>(std::countr_zero(first & kTopBits)) / 8;
  progress.source += count;
  progress.target += count * kUnitSize;
  return count == 8;
}

/// Two or three bytes, of which nothing is checked but that the sum is one unit.
bool decodeUnit(Progress& progress, std::uint32_t value, std::size_t size) {
  if (value > 0xFFFF) return false;
  writeUnit(progress.target, static_cast<std::uint16_t>(value));
  progress.source += size;
  progress.target += kUnitSize;
  return true;
}

/// Four bytes that become a pair.
bool decodePair(Progress& progress, std::uint32_t value) {
  if (value < 0x10000 || value > 0x10FFFF) return false;
  writeUnit(progress.target, static_cast<std::uint16_t>(0xD7C0 + (value >> 10)));
  writeUnit(progress.target + kUnitSize, static_cast<std::uint16_t>(0xDC00 + (value & 0x3FF)));
  progress.source += 4;
  progress.target += 2 * kUnitSize;
  return true;
}

/// A character that is not ASCII, of up to four bytes. False, with nothing done, for any other.
bool decodeSequence(Progress& progress) {
  const auto* const text = reinterpret_cast<const unsigned char*>(progress.source);
  const std::uint32_t lead = text[0];
  if (lead < 0xC0 || lead > 0xF4) return false;
  const std::uint32_t two = (lead << 6) + text[1];
  if (lead < 0xE0) return decodeUnit(progress, two - 0x3080, 2);
  const std::uint32_t three = (two << 6) + text[2];
  if (lead < 0xF0) return decodeUnit(progress, three - 0xE2080, 3);
  return decodePair(progress, (three << 6) + text[3] - 0x3C82080);
}

/// False when only single characters go on.
bool decodePieces(Progress& progress) {
  if (decodeAscii(progress)) return true;
  do {
    if (!hasPieces(progress) || !decodeSequence(progress)) return false;
  } while (static_cast<signed char>(*progress.source) < 0);
  return true;
}

void decodeUtf8(Progress& progress) noexcept {
  // A copy can live in registers: what is written to the target cannot change it.
  Progress here = progress;
  while (hasPieces(here) && decodePieces(here)) {
  }
  progress = here;
}

// ---- UCS-2 to UTF-8 --------------------------------------------------------------------------

/// Four units below 0x100 to four bytes.
void narrowFour(char* target, std::uint64_t units) {
  units = (units | units >> 8) & 0x0000FFFF0000FFFF;
  const auto bytes = static_cast<std::uint32_t>(units | units >> 16);
  std::memcpy(target, &bytes, sizeof bytes);
}

constexpr std::size_t kUnitsInWord = 4;

/// Units below 0x800: one or two bytes are written, and as many counted. There is no jump, as long as the
/// compiler does not see a condition.
void encodeShort(Progress& progress, std::uint64_t units) {
  for (std::size_t i = 0; i < kUnitsInWord; ++i) {
    const std::uint32_t unit = units >> (16 * i) & 0x7FF;
    const std::uint32_t isTwo = (0x7F - unit) >> 31;
    const std::uint32_t two = 0x80C0 | unit >> 6 | (unit & 0x3F) << 8;
    writeUnit(progress.target, static_cast<std::uint16_t>(unit ^ ((two ^ unit) & (0 - isTwo))));
    progress.target += 1 + isTwo;
  }
  progress.source += kUnitsInWord * kUnitSize;
}

/// 16 ASCII units, or four below 0x800. False when there are others among the next four.
bool encodeSome(Progress& progress) {
  constexpr std::uint64_t kNotAscii = 0xFF80FF80FF80FF80;
  constexpr std::uint64_t kNotShort = 0xF800F800F800F800;
  const std::uint64_t first = readWord(progress.source);
  const std::uint64_t second = readWord(progress.source + 8);
  const std::uint64_t third = readWord(progress.source + 16);
  const std::uint64_t fourth = readWord(progress.source + 24);
  if (((first | second | third | fourth) & kNotAscii) == 0) {
    narrowFour(progress.target, first);
    narrowFour(progress.target + 4, second);
    narrowFour(progress.target + 8, third);
    narrowFour(progress.target + 12, fourth);
    progress.source += 4 * kUnitsInWord * kUnitSize;
    progress.target += 4 * kUnitsInWord;
    return true;
  }
  if ((first & kNotShort) != 0) return false;
  encodeShort(progress, first);
  return true;
}

/// Writes four bytes, the lowest first, of which `size` count.
void writeSequence(Progress& progress, std::uint32_t bytes, std::size_t size) {
  std::memcpy(progress.target, &bytes, sizeof bytes);
  progress.target += size;
  progress.source += size == 4 ? 2 * kUnitSize : kUnitSize;
}

/// A pair of surrogates; false, with nothing done, for one alone.
bool encodePair(Progress& progress, std::uint32_t high) {
  const std::uint32_t low = readUnit(progress.source + kUnitSize);
  if (!isHighSurrogate(high) || !isLowSurrogate(low)) return false;
  const std::uint32_t value = characterOfPair(high, low);
  writeSequence(
      progress,
      0x808080F0 | value >> 18 | (value >> 12 & 0x3F) << 8 | (value >> 6 & 0x3F) << 16 | (value & 0x3F) << 24,
      4);
  return true;
}

void encodeThree(Progress& progress, std::uint32_t unit) {
  writeSequence(progress, 0x8080E0 | unit >> 12 | (unit >> 6 & 0x3F) << 8 | (unit & 0x3F) << 16, 3);
}

/// A character; false, with nothing done, for one that is invalid. Most are of the first kind.
bool encodeCharacter(Progress& progress) {
  const std::uint32_t unit = readUnit(progress.source);
  if (unit >= 0x800 && unit < 0xD800) {
    encodeThree(progress, unit);
    return true;
  }
  if (unit < 0x80) {
    *progress.target++ = static_cast<char>(unit);
    progress.source += kUnitSize;
    return true;
  }
  if (unit < 0x800) {
    writeSequence(progress, 0x80C0 | unit >> 6 | (unit & 0x3F) << 8, 2);
    return true;
  }
  if (unit < 0xE000) return encodePair(progress, unit);
  if (unit >= 0xFFFE || (unit >= 0xFDD0 && unit <= 0xFDEF)) return false;
  encodeThree(progress, unit);
  return true;
}

/// False when only single characters go on.
bool encodePieces(Progress& progress) {
  if (encodeSome(progress)) return true;
  do {
    if (!hasPieces(progress) || !encodeCharacter(progress)) return false;
  } while (readUnit(progress.source) >= 0x800);
  return true;
}

void encodeUtf8(Progress& progress) noexcept {
  Progress here = progress;
  while (hasPieces(here) && encodePieces(here)) {
  }
  progress = here;
}

// ---- Mixed bytes -----------------------------------------------------------------------------

/// All is left to the walk, character by character, that follows.
void decodeMixed(Progress&, const VelStDoubleByteTable&) noexcept {}
void decodeShifted(Progress&, const VelStDoubleByteTable&, bool&) noexcept {}

}  // namespace

constinit const Kernels kPortableKernels{&widen,      &narrow,     &swap,        &lookUpBytes,
                                         &decodeUtf8, &encodeUtf8, &decodeMixed, &decodeShifted};

}  // namespace vel::codepage
