// Chooses the strict writer of a target; and converts single characters from and to UTF-16 for all writers.
#include "codepage/strict/strict_writer.h"

#include "base/utf.h"
#include "codepage/strict/page_writers.h"
#include "codepage/strict/unicode_writers.h"

namespace vel::codepage {

Writer* makeWriter(const VelClCCSID& target) {
  if (target.getCCSID() == VelClCCSID::CCSID_UTF8) return makeUtf8Writer(target);
  return target.isUCS2() ? makeUtf16Writer(target) : makePageWriter(target);
}

Character decodeFirst(const char16_t* units) {
  if (!isHighSurrogate(units[0])) return {units[0], 1};
  return {decodeSurrogatePair(units[0], units[1]), 2};
}

std::size_t encodeUtf16(char32_t character, char16_t (&units)[2]) {
  if (character < kFirstSupplementary) {
    units[0] = static_cast<char16_t>(character);
    return 1;
  }
  units[0] = highSurrogateOf(character);
  units[1] = lowSurrogateOf(character);
  return 2;
}

}  // namespace vel::codepage
