// The results and sizes of converters, and every character of UTF-8. Arbitrary bytes, sources in pieces, and
// targets that are too small are tested by fuzz/codepage_fuzz.cpp.
#include "codepage/test/outcome.h"
#include "codepage/test/reference_utf8.h"
#include "platform/test/test.h"

namespace {

using vel::test::bytesOf;

VelClCCSID ccsidOf(const std::string& text) {
  const bool isNumber = text.find_first_not_of("0123456789") == std::string::npos;
  return isNumber ? ccsid(std::stoi(text)) : VelClCCSID(text.c_str());
}

/// Returns a converter of the class that the texts select: "U" as `from` or `to` selects
/// VelClUnicode2CodePageConverter or VelClCodePage2UnicodeConverter, "UTF-8" as `to`
/// VelClCodePage2UTF8Converter, and two CCSIDs VelClCodePage2CodePageConverter.
std::unique_ptr<VelClConverterABase> converterOf(const std::string& from, const std::string& to) {
  if (from == "U") return std::make_unique<VelClUnicode2CodePageConverter>(ccsidOf(to));
  if (to == "U") return std::make_unique<VelClCodePage2UnicodeConverter>(ccsidOf(from));
  if (to == "UTF-8") return std::make_unique<VelClCodePage2UTF8Converter>(ccsidOf(from));
  return std::make_unique<VelClCodePage2CodePageConverter>(ccsidOf(from), ccsidOf(to));
}

Outcome outcomeOf(const std::string& bytes, const std::string& consumed, const std::string& error) {
  using Class = VelEnErrorClass;
  static const std::map<std::string, std::pair<std::uint32_t, Class>> kErrors = {
      {"none", {VEL_NO_ERROR, Class::UNKNOWN}},
      {"incomplete", {CPCONVERTER_INCOMPLETE, Class::USER_DATA_ERROR}},
      {"too big", {CPCONVERTER_TOO_BIG, Class::DATA_OUT_OF_BOUNDS}},
      {"unsupported", {CPCONVERTER_UNSUPPORTED, Class::INCONSISTENT_SITUATION}},
      {"ICU: too big", {CPCONVERTER_TOO_BIG, Class::USER_DATA_ERROR}},
      {"ICU: illegal argument", {ICU_ILLEGAL_ARGUMENT_ERROR, Class::USER_ERROR}}};
  const auto& [id, errorClass] = kErrors.at(error);
  return {bytesOf(bytes), std::stoul(consumed), id, errorClass};
}

// Rows with the same CCSIDs share a converter, which must not keep state from one call to the next.
TEST(Conversion, ConvertsEveryRowAsExpected) {
  std::map<std::string, std::unique_ptr<VelClConverterABase>> converters;
  for (const auto& row : vel::test::readTable(VEL_TEST_DATA "test/conversions.tsv")) {
    const std::string &what = row[0], &from = row[1], &to = row[2], &route = row.at(8);
    SCOPED_TRACE(from + " to " + to + ": " + what);
    const bool needsIcu = route == "ICU";
    if (needsIcu && !hasIcu()) continue;
    auto& converter = converters[from + " " + to];
    if (converter == nullptr) converter = converterOf(from, to);
    EXPECT_EQ(converter->isSupported(), route != "none");
    EXPECT_EQ(converter->requiresExternalICUData(), needsIcu);
    EXPECT_EQ(converter->requiresExternalICONVRoutine(), route == "none");
    const std::string &source = row[3], &room = row[4];
    EXPECT_EQ(convert(*converter, bytesOf(source), std::stoul(room)), outcomeOf(row[5], row[6], row[7]));
  }
}

TEST(Conversion, ReturnsTheExpectedTargetSizes) {
  const auto expectSize = [](const std::string& expected, std::size_t size) {
    if (expected == "-") return;
    EXPECT_EQ(std::to_string(size), expected);
  };
  for (const auto& row : vel::test::readTable(VEL_TEST_DATA "test/maximum_sizes.tsv")) {
    const std::string &from = row[0], &to = row[1];
    const std::string &maximumForSize = row[3], &maximumForLength = row[4], &sufficientForSize = row.at(5);
    const auto converter = converterOf(from, to);
    const std::size_t size = std::stoull(row[2]);
    SCOPED_TRACE(from + " to " + to);
    expectSize(maximumForSize, converter->getMaximumSizeForSize(size));
    expectSize(maximumForLength, converter->getMaximumSizeForLength(size));
    expectSize(sufficientForSize, converter->getSufficientSizeForSize(size));
  }
}

TEST(Utf8, AllButReplacedNoncharactersRoundTrip) {
  std::string units;
  for (unsigned int value = 0; value < 0x110000; ++value) {
    if (value >= 0xD800 && value < 0xE000) continue;
    // The encoder replaces these units by U+FFFF.
    if ((value >= 0xFDD0 && value <= 0xFDEF) || value == 0xFFFE || value == 0xFFFF) continue;
    if (value < 0x10000)
      units += unitBytes({static_cast<char16_t>(value)});
    else
      units += unitBytes(
          {static_cast<char16_t>(0xD7C0 + (value >> 10)), static_cast<char16_t>(0xDC00 + value % 0x400)});
  }
  const Outcome encoded = convert(VelClUnicode2CodePageConverter{ccsid(1208)}, units, units.size() * 2);
  EXPECT_EQ(encoded, referenceUcs2ToUtf8(units, units.size() * 2));
  EXPECT_EQ(convert(VelClCodePage2UnicodeConverter{ccsid(1208)}, encoded.bytes, units.size()),
            (Outcome{units, encoded.bytes.size()}));
  EXPECT_EQ(VelClConverterABase::convertUtf8CharToUtf32("A"), 0x41U);
  EXPECT_EQ(VelClConverterABase::convertUtf8CharToUtf32("\xE2\x82\xAC"), 0x20ACU);
  EXPECT_EQ(VelClConverterABase::convertUtf8CharToUtf32("\xF0\x9F\x98\x80"), 0x1F600U);
}

}  // namespace
