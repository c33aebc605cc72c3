// Every cell of the tables, compared with the published mappings. The tables are generated from the same
// files, which this test reads with a separate parser, so it shows that the generator loses nothing.
// peer_tables_test.cpp compares the contents with those of other libraries, and fuzz/codepage_fuzz.cpp uses
// the tables for conversions of mixed bytes.
#include "codepage/test/mapping_file.h"
#include "codepage/test/strict_run.h"
#include "platform/test/test.h"

namespace {

/// Returns the units of a page, which have their high bytes first.
std::vector<unsigned int> unitsOf(const uint16_t* page) {
  const auto* bytes = reinterpret_cast<const unsigned char*>(page);
  std::vector<unsigned int> units;
  for (; units.size() < 256; bytes += 2) units.push_back(bytes[0] * 256U + bytes[1]);
  return units;
}

char16_t unitFor(unsigned int unit, bool foldsNextLine) {
  return static_cast<char16_t>(foldsNextLine && unit == 0x85 ? 0x0A : unit);
}

TEST(SingleByteTables, HoldThePublishedMappings) {
  std::set<int> numbers;
  for (const MappingFile& mapping : MappingFile::all("sbcs")) {
    SCOPED_TRACE(mapping.ccsid);
    numbers.insert(mapping.ccsid);
    const uint16_t* const table = velGetSBCStoUCS2Table(static_cast<unsigned int>(mapping.ccsid));
    ASSERT_NE(table, nullptr);
    int ccsidBefore = 0;
    std::memcpy(&ccsidBefore, reinterpret_cast<const char*>(table) - 4, 4);
    EXPECT_EQ(ccsidBefore, mapping.ccsid);
    EXPECT_EQ(unitsOf(table), mapping.bytes);
    const VelClCodePage2UnicodeConverter converter{ccsid(mapping.ccsid)};
    // Intentional: the properties decide, and 838 is not EBCDIC by them.
    const bool foldsNextLine = ccsid(mapping.ccsid).isEBCDIC();
    std::string source;
    std::u16string expected;
    for (unsigned int byte = 0; byte < 256; ++byte) {
      source += static_cast<char>(byte);
      expected += unitFor(mapping.bytes[byte], foldsNextLine);
    }
    EXPECT_EQ(convert(converter, source, 512), (Outcome{unitBytes(expected), 256}));
    VelClStrictConversion strict(ccsid(mapping.ccsid), ccsid(13488),
                                 VelClStrictConversion::VelEnPolicy::REPLACE);
    strict.setNextLineFolding(foldsNextLine);
    EXPECT_EQ(convertInPieces(strict, source, {}).bytes, unitBytes(expected));
  }
  for (int number = 0; number < 0x10000; ++number)
    EXPECT_EQ(velGetSBCStoUCS2Table(static_cast<unsigned int>(number)) != nullptr, numbers.contains(number));
}

void expectTable(const MappingFile& mapping) {
  bool isEbcdic = !mapping.isEbcdic;
  const VelStDoubleByteTable* const table =
      velGetDBCStoUCS2Table(static_cast<unsigned int>(mapping.ccsid), isEbcdic);
  ASSERT_NE(table, nullptr);
  EXPECT_EQ(isEbcdic, mapping.isEbcdic);
  EXPECT_EQ(table->ccsid, static_cast<unsigned int>(mapping.ccsid));
  EXPECT_EQ(table->isEbcdic, mapping.isEbcdic ? 1 : 0);
  EXPECT_EQ(table->leadBytes == nullptr, mapping.isEbcdic);
  EXPECT_EQ(unitsOf(table->pages[1]), mapping.bytes);
  for (std::size_t lead = 0; lead < 256; ++lead) {
    EXPECT_EQ(!isEbcdic && table->leadBytes[lead] != 0, mapping.isLead[lead]) << lead;
    ASSERT_GT(table->pageNumbers[lead], 0);
    ASSERT_NE(table->pageNumbers[lead], 2) << "the page of the single bytes";
    const auto* const pairs = mapping.pairs.data() + lead * 256;
    EXPECT_EQ(unitsOf(table->pages[table->pageNumbers[lead] - 1]), std::vector(pairs, pairs + 256)) << lead;
  }
}

TEST(DoubleByteTables, HoldThePublishedMappings) {
  std::set<int> numbers;
  for (const MappingFile& mapping : MappingFile::all("dbcs")) {
    SCOPED_TRACE(mapping.ccsid);
    numbers.insert(mapping.ccsid);
    expectTable(mapping);
  }
  for (int number = 0; number < 0x10000; ++number) {
    if (numbers.contains(number)) continue;
    bool untouched = true;
    EXPECT_EQ(velGetDBCStoUCS2Table(static_cast<unsigned int>(number), untouched), nullptr) << number;
    EXPECT_TRUE(untouched);
  }
  EXPECT_EQ(velGetEUCtoUCS2Table(954), nullptr);
}

TEST(ReverseTables, HoldThePublishedMappings) {
  for (const int number : {500, 850}) {
    const MappingFile mapping(number);
    const unsigned char* const table = velGetUCS2toSBCSTable(static_cast<unsigned int>(number));
    ASSERT_NE(table, nullptr);
    std::u16string source;
    std::string expected;
    for (unsigned int unit = 0; unit < 0x10000; ++unit) {
      source += static_cast<char16_t>(unit);
      expected += static_cast<char>(mapping.units[unit]);
      ASSERT_EQ(table[table[unit >> 8] * 256U + unit % 256], mapping.units[unit]) << number << " " << unit;
    }
    const VelClUnicode2CodePageConverter converter{ccsid(number)};
    EXPECT_EQ(convert(converter, unitBytes(source), expected.size()), (Outcome{expected, 0x20000})) << number;
    // Strict conversions refuse lone surrogates.
    VelClStrictConversion strict(ccsid(13488), ccsid(number), VelClStrictConversion::VelEnPolicy::REPLACE);
    EXPECT_EQ(convertInPieces(strict, unitBytes(source.substr(0, 0xD800)), {}).bytes,
              expected.substr(0, 0xD800));
  }
  for (const unsigned int number : {0U, 37U, 499U, 501U, 819U, 851U, 1252U})
    EXPECT_EQ(velGetUCS2toSBCSTable(number), nullptr) << number;
}

}  // namespace
