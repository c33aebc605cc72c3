// Strict writers of UTF-8 and of UTF-16 in either byte order. No character is unmappable; the converters do
// the work.
#include "codepage/strict/unicode_writers.h"

#include <algorithm>

#include "codepage/conversion.h"

namespace vel::codepage {

namespace {

/// Writes UTF-16, and UTF-8 of characters that the converter does not replace.
class UnicodeWriter : public Writer {
 public:
  explicit UnicodeWriter(const VelClCCSID& target) : converter_(target) {}

  std::size_t write(const char16_t* units, std::size_t count, Output& output) override {
    constexpr std::size_t kMaxBytes = 3;
    char* const to = output.reserve(count * kMaxBytes);
    output.commit(converter_.convertBytes(to, count * kMaxBytes, reinterpret_cast<const char*>(units),
                                          count * kUnitSize));
    return count;
  }
  void writeOrSubstitute(char32_t character, Output& output) override {
    char16_t units[2];
    write(units, encodeUtf16(character, units), output);
  }

 private:
  VelClUnicode2CodePageConverter converter_;
};

/// Whether velConvertByAlgorithmUCS2toUTF8 would write U+FFFF for this character, which is valid here.
/// Surrogates are paired in a writer's input, and U+FFFF itself is written as it is.
constexpr bool isReplaced(char16_t unit) {
  // Two comparisons for equality are vectorised better than a range.
  const bool isInBlock = ((unit & 0xFFF0) == 0xFDD0) | ((unit & 0xFFF0) == 0xFDE0);
  return isInBlock | (unit == 0xFFFE);
}

/// Writes the characters that the converter would replace itself, and passes the text between them on.
class Utf8Writer : public UnicodeWriter {
 public:
  using UnicodeWriter::UnicodeWriter;

  std::size_t write(const char16_t* units, std::size_t count, Output& output) override {
    std::uint16_t found = 0;
    for (std::size_t i = 0; i < count; ++i)
      found = static_cast<std::uint16_t>(found | (isReplaced(units[i]) ? 1 : 0));
    if (found == 0) return UnicodeWriter::write(units, count, output);
    for (std::size_t i = 0; i < count; ++i) {
      const auto* const next = std::find_if(units + i, units + count, isReplaced);
      UnicodeWriter::write(units + i, static_cast<std::size_t>(next - units) - i, output);
      i = static_cast<std::size_t>(next - units);
      if (i < count) writeThree(*next, output);
    }
    return count;
  }

 private:
  static void writeThree(char16_t unit, Output& output) {
    output.commit(encodeUtf8(unit, output.reserve(3)));
  }
};

}  // namespace

Writer* makeUtf8Writer(const VelClCCSID& target) {
  return create<Utf8Writer>(target);
}

Writer* makeUtf16Writer(const VelClCCSID& target) {
  return create<UnicodeWriter>(target);
}

}  // namespace vel::codepage
