// The conversions through converters: their oddities and sizes, every split of the source, and all characters
// of UTF-8. Noise, and targets too small for it, are the matter of fuzz/codepage_fuzz.cpp.
#include <gtest/gtest.h>

#include <map>
#include <string>

#include "codepage/test/outcome.h"
#include "codepage/test/reference_utf8.h"
#include "platform/test/table.h"

namespace {

using vel::test::bytesOf;

const VelClCodePage2UnicodeConverter kFromUtf8{ccsid(1208)};
const VelClUnicode2CodePageConverter kToUtf8{ccsid(1208)};

VelClCCSID ccsidOf(const std::string& text) {
  const bool isNumber = text.find_first_not_of("0123456789") == std::string::npos;
  return isNumber ? ccsid(std::stoi(text)) : VelClCCSID(text.c_str());
}

/// The converter from one CCSID to the other, "U" being the class for Unicode and "UTF-8" the one for that.
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

// Rows of one way share its converter: nothing must stay from one call to the next.
TEST(Conversion, HasItsOddities) {
  const bool hasIcu = VelClCodePage2UnicodeConverter(ccsid(943)).isSupported();
  std::map<std::string, std::unique_ptr<VelClConverterABase>> converters;
  for (const auto& row : vel::test::readTable(VEL_TEST_DATA "test/conversions.tsv")) {
    SCOPED_TRACE(row[1] + " to " + row[2] + ": " + row[0]);
    const bool needsIcu = row[8] == "ICU";
    if (needsIcu && !hasIcu) continue;
    auto& converter = converters[row[1] + " " + row[2]];
    if (converter == nullptr) converter = converterOf(row[1], row[2]);
    EXPECT_EQ(converter->isSupported(), row[8] != "none");
    EXPECT_EQ(converter->requiresExternalICUData(), needsIcu);
    EXPECT_EQ(converter->requiresExternalICONVRoutine(), row[8] == "none");
    EXPECT_EQ(convert(*converter, bytesOf(row[3]), std::stoul(row[4])), outcomeOf(row[5], row[6], row[7]));
  }
}

TEST(Conversion, TellsMaximumSizes) {
  for (const auto& row : vel::test::readTable(VEL_TEST_DATA "test/maximum_sizes.tsv")) {
    const auto converter = converterOf(row[0], row[1]);
    const std::size_t size = std::stoul(row[2]);
    EXPECT_EQ(std::to_string(converter->getMaximumSizeForSize(size)), row[3]) << row[0] << " " << row[1];
    EXPECT_EQ(std::to_string(converter->getMaximumSizeForLength(size)), row[4]) << row[0] << " " << row[1];
  }
}

void expectThatEverySplitContinues(const VelClConverterABase& converter, std::string_view text) {
  const Outcome whole = convert(converter, text, text.size() * 2);
  ASSERT_EQ(whole.consumed, text.size());
  for (std::size_t cut = 0; cut <= text.size(); ++cut) {
    const Outcome first = convert(converter, text.substr(0, cut), cut * 2);
    ASSERT_EQ(first.errorId == VEL_NO_ERROR, first.consumed == cut);
    const Outcome second = convert(converter, text.substr(first.consumed), text.size() * 2);
    ASSERT_EQ(first.bytes + second.bytes, whole.bytes) << cut;
  }
}

TEST(Conversion, EverySplitOfTheSourceContinues) {
  std::string text;
  for (int i = 0; i < 60; ++i)
    text += std::string(static_cast<std::size_t>(i), 'x') + "\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80";
  expectThatEverySplitContinues(kFromUtf8, text);
  expectThatEverySplitContinues(VelClCodePage2UnicodeConverter{ccsid(948)},
                                "ab\xA4\x40xy\xA4\x41\xA4\x42z\xFE\x7F");
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

}  // namespace
