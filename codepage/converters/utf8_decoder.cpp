// UTF-8 to UCS-2 with surrogate pairs, by the algorithm of the Unicode Consortium's ConvertUTF.c (2001): the
// bytes of a sequence are summed up, each shifted by six bits, and a constant for the sequence's length takes
// away what their marker bits contributed. For E2 82 AC (the euro sign):
//
//   (E2 << 12) + (82 << 6) + AC = E412C, and E412C - E2080 = 20AC
//
// Trailing bytes are not checked, and sequences have up to six bytes; strict/ is for callers that need more.
// The kernels convert most of a text; this file converts what they leave, and defines the results.
#include <algorithm>
#include <bit>

#include "codepage/conversion.h"
#include "codepage/kernels/kernels.h"

namespace {

using vel::codepage::Call;
using vel::codepage::Cursor;
using vel::codepage::kUnitSize;

/// The constants by the number of trailing bytes: the sum of the marker bits, each in its place, modulo 2^32.
constexpr std::uint32_t kOffsets[] = {0x00000000, 0x00003080, 0x000E2080, 0x03C82080, 0xFA082080, 0x82082080};
/// The largest value of a six-byte sequence. Larger ones come from the lead bytes FE and FF, or from a
/// difference below zero, which wraps.
constexpr std::uint32_t kMaxValue = 0x7FFFFFFF;

/// Returns how many bytes follow `lead`. 0 for 80 to BF: a lone trailing byte is decoded as itself.
constexpr unsigned int trailingBytes(unsigned char lead) {
  if (lead < 0xC0) return 0;
  const int ones = std::countl_one(lead);
  return ones > 6 ? 5 : static_cast<unsigned int>(ones) - 1;
}

std::uint32_t decode(const unsigned char* text, unsigned int trailing) {
  std::uint32_t value = 0;
  for (unsigned int i = 0; i < trailing; ++i) value = (value + text[i]) << 6;
  return value + text[trailing] - kOffsets[trailing];
}

/// Writes one unit or a pair. Returns false, with nothing written, if it does not fit.
bool writeValue(Cursor& cursor, std::uint32_t value) {
  const bool isPair = value >= vel::kFirstSupplementary && value <= kMaxValue;
  if (cursor.targetSize() < (isPair ? 2 : 1) * kUnitSize) return false;
  if (!isPair) {
    const char32_t unit = value > kMaxValue ? vel::kReplacementCharacter : char32_t{value};
    vel::codepage::writeUnit(cursor.target, static_cast<std::uint16_t>(unit));
    cursor.target += kUnitSize;
    return true;
  }
  // Intentional: values above 10FFFF are not rejected; callers see two units, of which the first can be
  // any unit and the second is a low surrogate.
  vel::codepage::writeUnit(cursor.target, vel::highSurrogateOf(value));
  vel::codepage::writeUnit(cursor.target + kUnitSize, vel::lowSurrogateOf(value));
  cursor.target += 2 * kUnitSize;
  return true;
}

/// Decodes one character. Reports an error and returns false if it is incomplete or does not fit.
bool decodeCharacter(const Call& call, Cursor& cursor) {
  const auto* const text = reinterpret_cast<const unsigned char*>(cursor.source);
  const unsigned int trailing = trailingBytes(*text);
  if (cursor.sourceSize() <= trailing) {
    call.setError(vel::codepage::kIncomplete);
    return false;
  }
  // Intentional: after CPCONVERTER_TOO_BIG callers find the source position past the character that did not
  // fit.
  cursor.source += trailing + 1;
  if (writeValue(cursor, decode(text, trailing))) return true;
  call.setError(vel::codepage::kTooBig);
  return false;
}

/// Decodes ASCII bytes up to the first other one, or until the target is full.
void decodeAscii(Cursor& cursor) {
  std::size_t size = std::min(cursor.sourceSize(), cursor.targetSize() / kUnitSize);
  for (; size > 0 && static_cast<signed char>(*cursor.source) >= 0; --size) {
    vel::codepage::writeUnit(cursor.target, static_cast<unsigned char>(*cursor.source++));
    cursor.target += kUnitSize;
  }
}

/// Decodes a few characters that the kernel left, then lets it try again: after an ill-formed sequence
/// well-formed text mostly follows. Returns false after an error.
bool decodeCharacters(const Call& call, Cursor& cursor) {
  constexpr std::size_t kSome = 32;
  decodeAscii(cursor);
  for (std::size_t i = 0; i < kSome && cursor.source != cursor.sourceEnd; ++i)
    if (!decodeCharacter(call, cursor)) return false;
  return true;
}

}  // namespace

size_t velConvertByAlgorithmUTF8toUCS2(VelClConverterABase::_VelStConverter& call) {
  Cursor cursor = vel::codepage::cursorOf(call);
  const vel::codepage::Kernels& kernels = vel::codepage::kernels();
  // The kernel stops before what it cannot handle, near the end at the latest; at least one character is then
  // decoded here, so that the loop always advances.
  do {
    kernels.decodeUtf8(cursor);
  } while (cursor.source != cursor.sourceEnd && decodeCharacters(call, cursor));
  *call.source = cursor.source;
  return static_cast<std::size_t>(cursor.target - call.target);
}

uint32_t VelClConverterABase::convertUtf8CharToUtf32(const char* text) {
  const auto* const bytes = reinterpret_cast<const unsigned char*>(text);
  return decode(bytes, trailingBytes(*bytes));
}
