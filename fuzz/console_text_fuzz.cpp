// UTF-8 that is written to a console in pieces. The input is a text whose NULs separate the pieces.
#include "base/utf16_pieces.h"
#include "fuzz/bytes.h"

namespace fuzz::console_text {

namespace {

std::u16string append(vel::Utf16Pieces& pieces, std::string_view piece) {
  std::u16string units;
  require(pieces.append(piece, [&units](const char16_t* written, std::size_t count) {
    require({count > 0, count <= vel::Utf16Pieces::kMaxUnits});
    units.append(written, count);
    return true;
  }));
  return units;
}

/// Encodes well-formed UTF-16.
std::string utf8Of(std::u16string_view units) {
  std::string text;
  while (!units.empty()) {
    const std::size_t count = vel::unitsOfFirstCharacter(units.data(), units.size());
    require(count == 2 || !vel::isSurrogate(units[0]));
    const char32_t character = count == 2 ? vel::decodeSurrogatePair(units[0], units[1]) : units[0];
    char bytes[vel::kMaxUtf8Bytes];
    text.append(bytes, vel::encodeUtf8(character, bytes));
    units.remove_prefix(count);
  }
  return text;
}

void run(Bytes input) {
  vel::Utf16Pieces cut, whole;
  std::string all;
  std::u16string units;
  for (const Text& piece : input.texts()) {
    all += piece.view();
    units += append(cut, piece.view());
  }
  require(units == append(whole, all));
  const std::string shown = utf8Of(units);
  // Text without a fault is shown as it is, up to a character that is cut at the end.
  if (units.find(u'\uFFFD') == std::u16string::npos)
    require({all.starts_with(shown), all.size() - shown.size() < vel::kMaxUtf8Bytes});
}

const Target target("console_text", run);

}  // namespace

}  // namespace fuzz::console_text
