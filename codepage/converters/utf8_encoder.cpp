// UCS-2 with surrogate pairs to UTF-8. The kernel encodes a prefix; this file encodes the rest, character by
// character, and defines the result for invalid units.
#include "codepage/conversion.h"
#include "codepage/kernels/kernels.h"

namespace {

using vel::codepage::Call;
using vel::codepage::Cursor;
using vel::codepage::kUnitSize;

constexpr bool isInvalid(char32_t unit) {
  return vel::isSurrogate(unit) || (unit >= 0xFDD0 && unit <= 0xFDEF) || unit >= 0xFFFE;
}

struct Character {
  char32_t value;
  std::size_t units;
};

/// Returns the first character of a text of `units` units, at least one. An unpaired surrogate, also one that
/// the text ends with, is invalid.
Character characterAt(const char* source, std::size_t units) {
  const char32_t first = vel::codepage::readUnit(source);
  if (vel::isHighSurrogate(first) && units > 1) {
    const char32_t second = vel::codepage::readUnit(source + kUnitSize);
    if (vel::isLowSurrogate(second)) return {vel::decodeSurrogatePair(first, second), 2};
  }
  return {isInvalid(first) ? vel::codepage::kUtf8Replacement : first, 1};
}

/// Encodes one character. Returns false if it does not fit.
bool encodeCharacter(Cursor& cursor) {
  const Character character = characterAt(cursor.source, cursor.sourceSize() / kUnitSize);
  // Intentional: after CPCONVERTER_TOO_BIG callers find the source position past the character that did not
  // fit.
  cursor.source += character.units * kUnitSize;
  if (vel::utf8Length(character.value) > cursor.targetSize()) return false;
  cursor.target += vel::encodeUtf8(character.value, cursor.target);
  return true;
}

/// Encodes a few characters that the kernel left, then lets it try again. Returns false if one does not fit.
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
