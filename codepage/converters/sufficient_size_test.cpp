// Tests that a target of getSufficientSizeForSize() bytes is large enough, also for texts that need the most:
// characters of two encoded lengths in turn. The sizes themselves are in test/maximum_sizes.tsv.
#include "codepage/test/outcome.h"
#include "platform/test/test.h"

namespace {

using Route = VelClConverterABase::VelEnRoute;

/// Converts into a target of the sufficient size; expects that it is not too small.
Outcome convertIntoSufficientSize(const VelClConverterABase& converter, std::string_view source) {
  Outcome outcome = convert(converter, source, converter.getSufficientSizeForSize(source.size()));
  EXPECT_NE(outcome.errorId, static_cast<std::uint32_t>(CPCONVERTER_TOO_BIG)) << hex(source.substr(0, 40));
  return outcome;
}

/// Returns a character for each encoded length, shifts included, that the page has in a sample: the units
/// below 0x500, every 37th above, and U+2000B, a supplementary character that few pages besides GB18030 have,
/// in place of surrogates.
std::map<std::size_t, std::string> sampleOfEachSize(const VelClConverterABase& converter) {
  std::map<std::size_t, std::string> characters;
  for (unsigned int unit = 0x20; unit < 0xFFF0; unit += unit < 0x500 ? 1 : 37) {
    const bool isSurrogate = unit >= 0xD800 && unit <= 0xDFFF;
    const std::string character =
        unitBytes(isSurrogate ? std::u16string{0xD840, 0xDC0B} : std::u16string{static_cast<char16_t>(unit)});
    characters.emplace(convertIntoSufficientSize(converter, character).bytes.size(), character);
  }
  return characters;
}

TEST(SufficientSize, IsSufficientForEveryTarget) {
  std::u16string all;
  for (unsigned int unit = 0; unit < 0x10000; ++unit) all += static_cast<char16_t>(unit);
  for (int number = 1; number < 0x10000; ++number) {
    if (!ccsid(number).isValid()) continue;
    const VelClUnicode2CodePageConverter converter{ccsid(number)};
    // The system's conversion depends on the locale of the machine.
    if (!converter.isSupported() || converter.getRoute() == Route::SYSTEM) continue;
    SCOPED_TRACE(number);
    const Outcome outcome = convertIntoSufficientSize(converter, unitBytes(all));
    EXPECT_EQ(outcome.consumed, 0x20000U);
    // If a page has at most one byte per unit, all of its characters have the same length.
    if (outcome.bytes.size() <= all.size()) continue;
    const auto characters = sampleOfEachSize(converter);
    for (const auto& [size, one] : characters)
      for (const auto& [otherSize, other] : characters) {
        std::string text;
        // Up to 13 characters: short texts have the least size to spare for the shifts at both ends.
        for (int i = 0; i < 13; ++i) convertIntoSufficientSize(converter, text += i % 2 == 0 ? one : other);
      }
  }
}

TEST(SufficientSize, IsSufficientForEverySource) {
  // Every byte before every fifth one, and every byte five times in a row.
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
      convertIntoSufficientSize(converter, bytes);
      for (std::size_t size = 0; size < 6; ++size)
        for (std::size_t from = 0; from < bytes.size(); from += 401)
          convertIntoSufficientSize(converter, std::string_view(bytes).substr(from, size));
    }
  }
}

}  // namespace
