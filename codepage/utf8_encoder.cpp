// UCS-2 with surrogate pairs to UTF-8.
#include "codepage/conversion.h"
#include "codepage/kernels.h"

namespace {

using vel::codepage::Call;
using vel::codepage::kUnitSize;
using vel::codepage::Progress;

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

/// One character; false when it does not fit.
bool encodeCharacter(Progress& progress) {
  const Character character = characterAt(progress.source, progress.sourceSize() / kUnitSize);
  // The character counts as consumed even when it does not fit. Keep.
  progress.source += character.units * kUnitSize;
  const std::size_t size = encodedSize(character.value);
  if (size > progress.targetSize()) return false;
  encode(progress.target, character.value, size);
  progress.target += size;
  return true;
}

/// Some characters, before larger pieces are tried again.
bool encodeCharacters(Progress& progress) {
  constexpr std::size_t kSome = 32;
  for (std::size_t i = 0; i < kSome && progress.source != progress.sourceEnd; ++i)
    if (!encodeCharacter(progress)) return false;
  return true;
}

}  // namespace

size_t velConvertByAlgorithmUCS2toUTF8(VelClConverterABase::_VelStConverter& call) {
  const std::size_t size = vel::codepage::takeWholeUnits(call) * kUnitSize;
  Progress progress{*call.source, *call.source + size, call.target, call.target + call.targetSize};
  const vel::codepage::Kernels& kernels = vel::codepage::kernels();
  bool fits = true;
  do {
    kernels.encodeUtf8(progress);
    if (progress.source == progress.sourceEnd) break;
    fits = encodeCharacters(progress);
  } while (fits);
  if (!fits) call.setError(vel::codepage::kTooBig);
  *call.source = progress.source;
  return static_cast<std::size_t>(progress.target - call.target);
}
