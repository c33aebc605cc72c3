// UTF-8 to UCS-2 with surrogate pairs, after the Unicode Consortium's ConvertUTF: sequences of up to six
// bytes, added up without a look at their trailing bytes, less a constant for each length.
#include <algorithm>
#include <bit>

#include "codepage/conversion.h"
#include "codepage/kernels/kernels.h"

namespace {

using vel::codepage::Call;
using vel::codepage::Cursor;
using vel::codepage::kUnitSize;

constexpr std::uint32_t kOffsets[] = {0x00000000, 0x00003080, 0x000E2080, 0x03C82080, 0xFA082080, 0x82082080};
/// Sums beyond it have wrapped.
constexpr std::uint32_t kMaxValue = 0x7FFFFFFF;

/// How many bytes follow; none after 80 to BF, which stand for themselves.
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

/// False when the target has no room.
bool writeValue(Cursor& cursor, std::uint32_t value) {
  const bool isPair = value >= vel::kFirstSupplementary && value <= kMaxValue;
  if (cursor.targetSize() < (isPair ? 2 : 1) * kUnitSize) return false;
  if (!isPair) {
    const char32_t unit = value > kMaxValue ? vel::kReplacementCharacter : char32_t{value};
    vel::codepage::writeUnit(cursor.target, static_cast<std::uint16_t>(unit));
    cursor.target += kUnitSize;
    return true;
  }
  // Values above 0x10FFFF are not rejected; the high surrogate's place then holds some other unit. Keep.
  vel::codepage::writeUnit(cursor.target, vel::highSurrogateOf(value));
  vel::codepage::writeUnit(cursor.target + kUnitSize, vel::lowSurrogateOf(value));
  cursor.target += 2 * kUnitSize;
  return true;
}

/// One character; false when the conversion ends with an error.
bool decodeCharacter(const Call& call, Cursor& cursor) {
  const auto* const text = reinterpret_cast<const unsigned char*>(cursor.source);
  const unsigned int trailing = trailingBytes(*text);
  if (cursor.sourceSize() <= trailing) {
    call.setError(vel::codepage::kIncomplete);
    return false;
  }
  // The character counts as consumed even when it does not fit. Keep.
  cursor.source += trailing + 1;
  if (writeValue(cursor, decode(text, trailing))) return true;
  call.setError(vel::codepage::kTooBig);
  return false;
}

/// ASCII, as far as there is room.
void decodeAscii(Cursor& cursor) {
  std::size_t size = std::min(cursor.sourceSize(), cursor.targetSize() / kUnitSize);
  for (; size > 0 && static_cast<signed char>(*cursor.source) >= 0; --size) {
    vel::codepage::writeUnit(cursor.target, static_cast<unsigned char>(*cursor.source++));
    cursor.target += kUnitSize;
  }
}

/// Some characters, before larger pieces are tried again.
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
