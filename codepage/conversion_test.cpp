// The conversion functions through converters: their oddities, every target size, every split of the source,
// and UTF-8 against a slow reference.
#include <gtest/gtest.h>

#include <random>
#include <string>

#include "codepage/test/conversion_outcome.h"
#include "codepage/test/reference_utf8.h"

namespace {

using namespace std::string_literals;

const VelClCodePage2UnicodeConverter kFromUtf8{ccsid(1208)};
const VelClUnicode2CodePageConverter kToUtf8{ccsid(1208)};

TEST(Conversion, HasItsOddities) {
  const VelClCodePage2UnicodeConverter copying{ccsid(1200)};
  const VelClCodePage2UnicodeConverter swapping{ccsid(65500)};
  const VelClCodePage2UnicodeConverter from37{ccsid(37)};
  const VelClCodePage2UnicodeConverter from37ByName{VelClCCSID("CP37")};
  const VelClCodePage2UnicodeConverter from838{ccsid(838)};
  const VelClCodePage2UnicodeConverter from930{ccsid(930)};
  const VelClCodePage2UnicodeConverter from948{ccsid(948)};
  const VelClUnicode2CodePageConverter to500{ccsid(500)};
  const VelClUnicode2CodePageConverter to819{ccsid(819)};
  const struct {
    const char* what;
    const VelClConverterABase& converter;
    std::string source;
    std::size_t targetSize;
    Outcome expected;
  } rows[] = {
      {"odd source", copying, "abcde", 10, incomplete("abcd", 4)},
      {"odd target", copying, "abcdefghij", 5, incomplete("abcd", 4)},
      {"both sides even", copying, "abcdef", 4, {"abcd", 4}},
      {"one byte", copying, "a", 10, incomplete("", 0)},
      {"swapped", swapping, "abcde", 4, {"badc", 4}},
      {"swapped, odd target", swapping, "abcdef", 3, incomplete("ba", 2)},
      {"NEL and LF", from37, "\x15\x25", 4, {unitBytes(u"\n\n"), 2}},
      {"no property, so NEL stays", from37ByName, "\x15\x25", 4, {unitBytes(u"\x85\n"), 2}},
      {"838 is no EBCDIC", from838, "\x15\x25", 4, {unitBytes(u"\x85\n"), 2}},
      {"target too small", from37, "\x15\x25", 3, tooBig("", 0)},
      {"shifted pair", from930, "\x0E\x42\xC1\x0F", 8, {unitBytes(u"\xFF21"), 4}},
      {"no shift-in", from930, "\x0E\x42\xC1", 8, incomplete(unitBytes(u"\xFF21"), 3)},
      {"shift-out alone", from930, "\x0E", 8, incomplete("", 1)},
      {"half a pair", from930, "\x0E\x42\xC1\x42", 8, incomplete(unitBytes(u"\xFF21"), 3)},
      {"shift-in among single bytes", from930, "\x0F\xC1", 8, {unitBytes(u"\x1A\x41"), 2}},
      {"shift-in as trail", from930, "\x0E\x42\x0F\x0F\xC1", 8, {unitBytes(u"\xFFFD\x41"), 5}},
      {"shift-out as trail", from930, "\x0E\x42\x0E\x0F", 8, {unitBytes(u"\xFFFD"), 4}},
      {"shift-out among pairs", from930, "\x0E\x0E\x42\x0F", 8, {unitBytes(u"\xFFFD"), 4}},
      {"shifted NEL and LF", from930, "\x15\x25", 4, {unitBytes(u"\n\n"), 2}},
      {"no state between calls", from930, "\xC1", 2, {unitBytes(u"A"), 1}},
      {"lead byte at the end", from948, "A\x81", 8, incomplete(unitBytes(u"A"), 1)},
      {"lead byte of an empty row", from948, "\x85\x41"s, 4, {unitBytes(u"\xFFFD"), 2}},
      {"odd UCS-2", to500, "A\0B\0C"s, 5, incomplete("\xC1\xC2", 4)},
      {"what 500 lacks", to500, unitBytes(u"\x4E00\xD83D\xDE00"), 3, {"\x3F\x3F\x3F", 6}},
      {"truncation", to819, unitBytes(u"\x20AC\x41"), 2, {"\xAC\x41", 4}},
      {"truncation, odd", to819, "\xAC\x20\x41", 2, incomplete("\xAC", 2)},
      {"truncation, target too small", to819, unitBytes(u"AB"), 1, tooBig("", 0)},
      {"emoji", kFromUtf8, "\xF0\x9F\x98\x80", 4, {unitBytes(u"\xD83D\xDE00"), 4}},
      {"half a pair's room", kFromUtf8, "\xF0\x9F\x98\x80", 3, tooBig("", 4)},
      {"room for one", kFromUtf8, "\xC3\xA4\xC3\xB6", 3, tooBig(unitBytes(u"\xE4"), 4)},
      {"last byte lacks", kFromUtf8, "A\xE2\x82", 8, incomplete(unitBytes(u"A"), 1)},
      {"incomplete before too big", kFromUtf8, "\xE2\x82", 0, incomplete("", 0)},
      {"trail bytes as leads", kFromUtf8, "\x80\xBF", 4, {unitBytes(u"\x80\xBF"), 2}},
      {"unchecked trails", kFromUtf8, "\xC3(", 4, {unitBytes(u"\x68"), 2}},
      {"overlong", kFromUtf8, "\xC0\x80", 4, {unitBytes(u"\0"s), 2}},
      {"surrogate", kFromUtf8, "\xED\xA0\x80", 4, {unitBytes(u"\xD800"), 3}},
      {"above U+10FFFF", kFromUtf8, "\xF4\x90\x80\x80", 4, {unitBytes(u"\xDC00\xDC00"), 4}},
      {"31 bits", kFromUtf8, "\xFD\xBF\xBF\xBF\xBF\xBF", 4, {unitBytes(u"\xD7BF\xDFFF"), 6}},
      {"wrapped", kFromUtf8, "\xFE\x80\x80\x80\x80\x80", 4, {unitBytes(u"\xFFFD"), 6}},
      {"lone high surrogate", kToUtf8, unitBytes(u"\xD800"), 4, {"\xEF\xBF\xBF", 2}},
      {"two high surrogates",
       kToUtf8,
       unitBytes(u"\xD83D\xD83D\xDE00"),
       8,
       {"\xEF\xBF\xBF\xF0\x9F\x98\x80", 6}},
      {"lone low surrogate", kToUtf8, unitBytes(u"\xDC00\x41"), 4, {"\xEF\xBF\xBF\x41", 4}},
      {"noncharacters",
       kToUtf8,
       unitBytes(u"\xFDCF\xFDD0\xFDEF\xFDF0"),
       12,
       {"\xEF\xB7\x8F\xEF\xBF\xBF\xEF\xBF\xBF\xEF\xB7\xB0", 8}},
      {"U+FFFE, U+FFFF, not U+1FFFE",
       kToUtf8,
       unitBytes(u"\xFFFE\xFFFF\xD83F\xDFFE"),
       10,
       {"\xEF\xBF\xBF\xEF\xBF\xBF\xF0\x9F\xBF\xBE", 8}},
      {"emoji does not fit", kToUtf8, unitBytes(u"\xD83D\xDE00"), 3, tooBig("", 4)},
      {"odd and cut within a pair", kToUtf8, unitBytes(u"A\xD83D") + "\x00"s, 8,
       incomplete("A\xEF\xBF\xBF", 4)},
      {"odd, then too big", kToUtf8, unitBytes(u"AB") + "\x00"s, 1, tooBig("A", 4)},
      {"nothing", kFromUtf8, "", 0, {"", 0}},
  };
  for (const auto& row : rows)
    EXPECT_EQ(convert(row.converter, row.source, row.targetSize), row.expected) << row.what;
}

TEST(Utf8, EveryTargetSizeGivesTheReference) {
  std::mt19937 random(7);
  for (const std::string& units : sampleTexts(60, 20, 60)) {
    const Outcome whole = referenceUcs2ToUtf8(units, units.size() * 2);
    for (std::size_t size = 0; size <= whole.bytes.size() + 1; ++size)
      ASSERT_EQ(convert(kToUtf8, units, size), referenceUcs2ToUtf8(units, size)) << hex(units);
    ASSERT_EQ(convert(kToUtf8, units.substr(1), units.size() * 2),
              referenceUcs2ToUtf8(units.substr(1), units.size() * 2));
    std::string text = whole.bytes;
    for (int damage = 0; damage < 4; ++damage) {
      for (std::size_t size = 0; size <= text.size() * 2 + 1; ++size)
        ASSERT_EQ(convert(kFromUtf8, text, size), referenceUtf8ToUcs2(text, size)) << hex(text);
      text[random() % text.size()] = static_cast<char>(random());
    }
  }
}

TEST(Utf8, EverySplitOfTheSourceContinues) {
  for (const std::string& units : sampleTexts(60, 20, 60)) {
    const std::string text = referenceUcs2ToUtf8(units, units.size() * 2).bytes;
    const std::string expected = referenceUtf8ToUcs2(text, text.size() * 2).bytes;
    for (std::size_t cut = 0; cut <= text.size(); ++cut) {
      const Outcome first = convert(kFromUtf8, std::string_view(text).substr(0, cut), cut * 2);
      ASSERT_EQ(first.errorId == VEL_NO_ERROR, first.consumed == cut);
      const Outcome second =
          convert(kFromUtf8, std::string_view(text).substr(first.consumed), text.size() * 2);
      ASSERT_EQ(first.bytes + second.bytes, expected) << cut;
    }
  }
}

TEST(Utf8, NoiseGivesTheReference) {
  std::mt19937 random(99);
  for (int i = 0; i < 4000; ++i) {
    std::string noise;
    const std::size_t size = random() % 150;
    const unsigned int bits = i % 2 == 0 ? 0xFF : 0x7F;
    while (noise.size() < size) noise += static_cast<char>(random() % 5 == 0 ? random() : random() & bits);
    const std::size_t room = random() % 320;
    ASSERT_EQ(convert(kFromUtf8, noise, room), referenceUtf8ToUcs2(noise, room)) << hex(noise) << " " << room;
    ASSERT_EQ(convert(kToUtf8, noise, room), referenceUcs2ToUtf8(noise, room)) << hex(noise) << " " << room;
  }
}

TEST(Utf8, EveryScalarValueGoesRound) {
  std::string units;
  for (unsigned int value = 0; value < 0x110000; ++value) {
    if (value >= 0xD800 && value < 0xE000) continue;
    if ((value >= 0xFDD0 && value <= 0xFDEF) || value == 0xFFFE || value == 0xFFFF) continue;
    if (value < 0x10000)
      units += unitBytes({static_cast<char16_t>(value)});
    else
      units += unitBytes(
          {static_cast<char16_t>(0xD7C0 + (value >> 10)), static_cast<char16_t>(0xDC00 + value % 0x400)});
  }
  const Outcome encoded = convert(kToUtf8, units, units.size() * 2);
  EXPECT_EQ(encoded, referenceUcs2ToUtf8(units, units.size() * 2));
  EXPECT_EQ(convert(kFromUtf8, encoded.bytes, units.size()), (Outcome{units, encoded.bytes.size()}));
  EXPECT_EQ(VelClConverterABase::convertUtf8CharToUtf32("A"), 0x41U);
  EXPECT_EQ(VelClConverterABase::convertUtf8CharToUtf32("\xE2\x82\xAC"), 0x20ACU);
  EXPECT_EQ(VelClConverterABase::convertUtf8CharToUtf32("\xF0\x9F\x98\x80"), 0x1F600U);
}

TEST(Conversion, DoubleBytesSplitAnywhereContinue) {
  const VelClCodePage2UnicodeConverter from948{ccsid(948)};
  const std::string text = "ab\xA4\x40xy\xA4\x41\xA4\x42z\xFE\x7F";
  const std::string expected = convert(from948, text, text.size() * 2).bytes;
  for (std::size_t cut = 0; cut <= text.size(); ++cut) {
    const Outcome first = convert(from948, std::string_view(text).substr(0, cut), cut * 2);
    const Outcome second = convert(from948, std::string_view(text).substr(first.consumed), text.size() * 2);
    EXPECT_EQ(first.bytes + second.bytes, expected) << cut;
  }
}

TEST(Conversion, EveryTargetSizeIsSafe) {
  const VelClCodePage2UnicodeConverter from37{ccsid(37)};
  const VelClCodePage2UnicodeConverter from930{ccsid(930)};
  const VelClCodePage2UnicodeConverter from948{ccsid(948)};
  const VelClUnicode2CodePageConverter to850{ccsid(850)};
  const VelClUnicode2CodePageConverter to819{ccsid(819)};
  std::mt19937 random(5);
  for (const VelClConverterABase* const converter :
       std::initializer_list<const VelClConverterABase*>{&from37, &from930, &from948, &to850, &to819}) {
    for (std::size_t length = 0; length < 140; ++length) {
      std::string noise;
      while (noise.size() < length) noise += static_cast<char>(random());
      const Outcome whole = convert(*converter, noise, 2 * length);
      for (std::size_t size = 0; size < 2 * length; ++size)
        ASSERT_EQ(convert(*converter, noise, size), size < whole.bytes.size() ? tooBig("", 0) : whole);
    }
  }
}

}  // namespace
