// UCS-2 with surrogate pairs to UTF-8.
#include "codepage/conversion.h"
#include "codepage/kernels/kernels.h"

namespace {

using vel::codepage::Call;
using vel::codepage::Cursor;
using vel::codepage::kUnitSize;

// U+FFFF stands for what is invalid, not U+FFFD. Keep.
constexpr char32_t kInvalid = 0xFFFF;

constexpr bool isInvalid(char32_t unit) {
  return vel::isSurrogate(unit) || (unit >= 0xFDD0 && unit <= 0xFDEF) || unit >= 0xFFFE;
}

struct Character {
  char32_t value;
  std::size_t units;
};

/// The character at the start of `units` units, which are at least one.
Character characterAt(const char* source, std::size_t units) {
  const char32_t first = vel::codepage::readUnit(source);
  if (vel::isHighSurrogate(first) && units > 1) {
    const char32_t second = vel::codepage::readUnit(source + kUnitSize);
    if (vel::isLowSurrogate(second)) return {vel::characterOfPair(first, second), 2};
  }
  return {isInvalid(first) ? kInvalid : first, 1};
}

/// One character; false when it does not fit.
bool encodeCharacter(Cursor& cursor) {
  const Character character = characterAt(cursor.source, cursor.sourceSize() / kUnitSize);
  // The character counts as consumed even when it does not fit. Keep.
  cursor.source += character.units * kUnitSize;
  if (vel::utf8Length(character.value) > cursor.targetSize()) return false;
  cursor.target += vel::encodeUtf8(character.value, cursor.target);
  return true;
}

/// Some characters, before larger pieces are tried again.
bool encodeCharacters(Cursor& cursor) {
  constexpr std::size_t kSome = 32;
  for (std::size_t i = 0; i < kSome && cursor.source != cursor.sourceEnd; ++i)
    if (!encodeCharacter(cursor)) return false;
  return true;
}

}  // namespace

size_t velConvertByAlgorithmUCS2toUTF8(VelClConverterABase::_VelStConverter& call) {
  const std::size_t size = vel::codepage::countWholeUnits(call) * kUnitSize;
  Cursor cursor{*call.source, *call.source + size, call.target, call.target + call.targetSize};
  const vel::codepage::Kernels& kernels = vel::codepage::kernels();
  bool fits = true;
  do {
    kernels.encodeUtf8(cursor);
    if (cursor.source == cursor.sourceEnd) break;
    fits = encodeCharacters(cursor);
  } while (fits);
  if (!fits) call.setError(vel::codepage::kTooBig);
  *call.source = cursor.source;
  return static_cast<std::size_t>(cursor.target - call.target);
}
