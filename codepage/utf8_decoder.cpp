// UTF-8 to UCS-2 with surrogate pairs, after the Unicode Consortium's ConvertUTF: sequences of up to six
// bytes, added up without a look at their trailing bytes, less a constant for each length.
#include <bit>

#include "codepage/conversion.h"

namespace {

using vel::codepage::Call;
using vel::codepage::kUnitSize;

constexpr std::uint32_t kOffsets[] = {0x00000000, 0x00003080, 0x000E2080, 0x03C82080, 0xFA082080, 0x82082080};
constexpr std::uint32_t kFirstSupplementary = 0x10000;
/// Sums beyond it have wrapped.
constexpr std::uint32_t kMaxValue = 0x7FFFFFFF;
constexpr std::uint16_t kReplacement = 0xFFFD;

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

/// Where a conversion stands in its target.
struct Target {
  char* position;
  std::size_t room;  ///< in bytes

  bool hasRoomFor(std::size_t units) const { return room >= units * kUnitSize; }
  void write(std::uint32_t unit) {
    vel::codepage::writeUnit(position, static_cast<std::uint16_t>(unit));
    position += kUnitSize;
    room -= kUnitSize;
  }
};

/// False when the target has no room.
bool writeValue(Target& target, std::uint32_t value) {
  const bool isPair = value >= kFirstSupplementary && value <= kMaxValue;
  if (!target.hasRoomFor(isPair ? 2 : 1)) return false;
  if (!isPair) {
    target.write(value > kMaxValue ? kReplacement : value);
    return true;
  }
  // Values above 0x10FFFF are not rejected; the high surrogate's place then holds some other unit. Keep.
  target.write(0xD800 + ((value - kFirstSupplementary) >> 10));
  target.write(0xDC00 + (value & 0x3FF));
  return true;
}

}  // namespace

size_t velConvertByAlgorithmUTF8toUCS2(VelClConverterABase::_VelStConverter& call) {
  const auto* position = reinterpret_cast<const unsigned char*>(*call.source);
  const unsigned char* const end = position + call.sourceSize;
  Target target{call.target, call.targetSize};
  while (position != end) {
    const unsigned int trailing = trailingBytes(*position);
    if (static_cast<std::size_t>(end - position) <= trailing) {
      call.setError(vel::codepage::kIncomplete);
      break;
    }
    const std::uint32_t value = decode(position, trailing);
    // The character counts as consumed even when it does not fit. Keep.
    position += trailing + 1;
    if (!writeValue(target, value)) {
      call.setError(vel::codepage::kTooBig);
      break;
    }
  }
  *call.source = reinterpret_cast<const char*>(position);
  return static_cast<std::size_t>(target.position - call.target);
}

uint32_t VelClConverterABase::convertUtf8CharToUtf32(const char* text) {
  const auto* const bytes = reinterpret_cast<const unsigned char*>(text);
  return decode(bytes, trailingBytes(*bytes));
}
