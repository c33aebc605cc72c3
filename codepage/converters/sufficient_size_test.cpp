// The sizes that are said to be enough, against the texts that need most: of each page that knows several
// lengths, characters of all of them in every order.
#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "codepage/test/outcome.h"

namespace {

using Route = VelClConverterABase::VelEnRoute;

/// Into a target of the size that is said to be enough.
Outcome convertInEnough(const VelClConverterABase& converter, std::string_view source) {
  const Outcome outcome = convert(converter, source, converter.getSufficientSizeForSize(source.size()));
  EXPECT_NE(outcome.errorId, static_cast<std::uint32_t>(CPCONVERTER_TOO_BIG)) << hex(source.substr(0, 40));
  return outcome;
}

/// One character for each size that a page has for single characters, with its shifts.
std::map<std::size_t, std::string> characterOfEachSize(const VelClConverterABase& converter) {
  std::map<std::size_t, std::string> characters;
  for (unsigned int unit = 0x20; unit < 0xFFF0; unit += unit < 0x500 ? 1 : 37) {
    const bool isHalf = unit >= 0xD800 && unit <= 0xDFFF;
    const std::string character =
        unitBytes(isHalf ? std::u16string{0xD840, 0xDC0B} : std::u16string{static_cast<char16_t>(unit)});
    characters.emplace(convertInEnough(converter, character).bytes.size(), character);
  }
  return characters;
}

TEST(SufficientSize, IsEnoughForEveryTarget) {
  std::u16string all;
  for (unsigned int unit = 0; unit < 0x10000; ++unit) all += static_cast<char16_t>(unit);
  for (int number = 1; number < 0x10000; ++number) {
    if (!ccsid(number).isValid()) continue;
    const VelClUnicode2CodePageConverter converter{ccsid(number)};
    if (!converter.isSupported() || converter.getRoute() == Route::SYSTEM) continue;
    SCOPED_TRACE(number);
    const Outcome outcome = convertInEnough(converter, unitBytes(all));
    EXPECT_EQ(outcome.consumed, 0x20000U);
    if (outcome.bytes.size() <= all.size()) continue;
    const auto characters = characterOfEachSize(converter);
    for (const auto& [size, one] : characters)
      for (const auto& [otherSize, other] : characters) {
        std::string text;
        for (int i = 0; i < 13; ++i) convertInEnough(converter, text += i % 2 == 0 ? one : other);
      }
  }
}

TEST(SufficientSize, IsEnoughForEverySource) {
  // Every byte with many others, then several times.
  std::string bytes;
  for (int lead = 0; lead < 256; ++lead)
    for (int trail = 0; trail < 256; trail += 5) bytes += {static_cast<char>(lead), static_cast<char>(trail)};
  for (int byte = 0; byte < 256; ++byte) bytes += std::string(5, static_cast<char>(byte));
  for (int number = 1; number < 0x10000; ++number) {
    if (!ccsid(number).isValid()) continue;
    for (const int target : {1208, 930}) {
      SCOPED_TRACE(std::to_string(number) + " to " + std::to_string(target));
      const VelClCodePage2CodePageConverter converter(ccsid(number), ccsid(target));
      if (!converter.isSupported()) continue;
      convertInEnough(converter, bytes);
      for (std::size_t size = 0; size < 6; ++size)
        for (std::size_t from = 0; from < bytes.size(); from += 401)
          convertInEnough(converter, std::string_view(bytes).substr(from, size));
    }
  }
}

// The sizes by properties stay what they are. Where they are too small, the other ones are not.
TEST(SufficientSize, CountsWhatPropertiesDoNotTell) {
  const struct {
    int ccsid;
    std::u16string text;
    std::string bytes;
  } rows[] = {{930, u"A\u3042", "\xC1\x0E\x44\x81\x0F"},
              {1388, u"\u4E00", "\x0E\x59\xBA\x0F"},
              {1392, u"\u0080", "\x81\x30\x81\x30"},
              {33722, u"\u00A6", "\x8F\xA2\xC3"}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.ccsid);
    const VelClUnicode2CodePageConverter converter{ccsid(row.ccsid)};
    if (!converter.isSupported()) continue;  // there is no ICU
    const std::string source = unitBytes(row.text);
    const std::size_t tooSmall = converter.getMaximumSizeForSize(source.size());
    EXPECT_EQ(convert(converter, source, tooSmall).errorId, static_cast<std::uint32_t>(CPCONVERTER_TOO_BIG));
    EXPECT_EQ(convert(converter, source, converter.getSufficientSizeForSize(source.size())),
              (Outcome{row.bytes, source.size()}));
  }
  // No size is too large to be told.
  const VelClUnicode2CodePageConverter toUtf8{ccsid(1208)};
  EXPECT_EQ(toUtf8.getSufficientSizeForSize(7), 9U);
  EXPECT_EQ(toUtf8.getSufficientSizeForSize(SIZE_MAX), SIZE_MAX);
  EXPECT_EQ(VelClCodePage2UTF8Converter(ccsid(37)).getSufficientSizeForSize(SIZE_MAX - 1), SIZE_MAX);
  EXPECT_EQ(VelClCodePage2CodePageConverter(ccsid(850), ccsid(850)).getSufficientSizeForSize(7), 7U);
}

}  // namespace
