// UCS-2 with surrogate pairs to UTF-8.
#include "codepage/conversion.h"

namespace {

using vel::codepage::Call;
using vel::codepage::kUnitSize;

// U+FFFF stands for what is invalid, not U+FFFD. Keep.
constexpr std::uint32_t kInvalid = 0xFFFF;

constexpr bool isInvalid(std::uint32_t unit) {
  return (unit & 0xF800) == 0xD800 || (unit >= 0xFDD0 && unit <= 0xFDEF) || unit >= 0xFFFE;
}

struct Character {
  std::uint32_t value;
  std::size_t units;
};

/// The character at the start of `units` units, which are at least one.
Character characterAt(const char* source, std::size_t units) {
  const std::uint32_t first = vel::codepage::readUnit(source);
  if (vel::codepage::isHighSurrogate(first) && units > 1) {
    const std::uint32_t second = vel::codepage::readUnit(source + kUnitSize);
    if (vel::codepage::isLowSurrogate(second))
      return {((first - 0xD800) << 10) + (second - 0xDC00) + 0x10000, 2};
  }
  return {isInvalid(first) ? kInvalid : first, 1};
}

constexpr std::size_t encodedSize(std::uint32_t value) {
  if (value < 0x80) return 1;
  if (value < 0x800) return 2;
  return value < 0x10000 ? 3 : 4;
}

void encode(char* target, std::uint32_t value, std::size_t size) {
  constexpr std::uint32_t kLeads[] = {0, 0x00, 0xC0, 0xE0, 0xF0};
  for (std::size_t i = size - 1; i > 0; --i) {
    target[i] = static_cast<char>(0x80 | (value & 0x3F));
    value >>= 6;
  }
  target[0] = static_cast<char>(kLeads[size] | value);
}

}  // namespace

size_t velConvertByAlgorithmUCS2toUTF8(VelClConverterABase::_VelStConverter& call) {
  std::size_t units = vel::codepage::takeWholeUnits(call);
  std::size_t written = 0;
  while (units != 0) {
    const Character character = characterAt(*call.source, units);
    // The character counts as consumed even when it does not fit. Keep.
    *call.source += character.units * kUnitSize;
    units -= character.units;
    const std::size_t size = encodedSize(character.value);
    if (size > call.targetSize - written) {
      call.setError(vel::codepage::kTooBig);
      break;
    }
    encode(call.target + written, character.value, size);
    written += size;
  }
  return written;
}
