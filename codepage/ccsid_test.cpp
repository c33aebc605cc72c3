// CCSIDs from numbers and names. The expected properties are read from the source of the generated tables;
// the families are also compared with the contents of the pages, which have another source.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>
#include <vector>

#include "codepage/test/outcome.h"
#include "platform/test/table.h"

namespace {

unsigned int flagsOf(const VelClCCSID& ccsid) {
  return (ccsid.isASCII() ? 0x01U : 0) | (ccsid.isEBCDIC() ? 0x02U : 0) | (ccsid.isDBCS() ? 0x04U : 0) |
         (ccsid.isSBCS() ? 0x08U : 0) | (ccsid.isUCS2() ? 0x40U : 0);
}

/// Expects the number, the name and the properties of a row; its first field is not used.
void expectCcsid(const VelClCCSID& ccsid, const std::vector<std::string>& row) {
  EXPECT_EQ(std::to_string(ccsid.getAsInt()), row[1]);
  EXPECT_EQ(ccsid.getName(), row[2]);
  EXPECT_EQ(ccsid.isValid(), row[2] != "???");
  EXPECT_EQ(flagsOf(ccsid), std::stoul(row[3], nullptr, 16));
}

TEST(Ccsid, EveryNumberHasItsProperties) {
  std::map<int, std::vector<std::string>> rows;
  for (const auto& row : vel::test::readTable(VEL_TEST_DATA "ccsids.tsv")) rows[std::stoi(row[0])] = row;
  // Rows are part of the interface: a row that is lost by mistake is noticed here.
  ASSERT_EQ(rows.size(), 430U);
  const std::vector<std::string> unknown = {"", "???", "0"};
  for (int number = 0; number <= 0xFFFF; ++number) {
    const auto& row = rows.contains(number) ? rows[number] : unknown;
    expectCcsid(VelClCCSID(number), {"", std::to_string(number), row[1], row[2]});
  }
}

// Compares the families with the place of the capital A. Intentional: some pages are of neither family by
// their properties, or are ASCII.
TEST(Ccsid, FamiliesAreThoseOfTheContents) {
  std::set<int> others;
  int agreeing = 0;
  for (int number = 1; number <= 0xFFFF; ++number) {
    const VelClCCSID page(number);
    if (!page.isValid() || page.isUCS2()) continue;
    const VelClCodePage2UnicodeConverter converter(page);
    if (!converter.isSupported()) continue;
    const auto isLetterA = [&](const char* byte) {
      return convert(converter, byte, 8).bytes == unitBytes(u"A");
    };
    const bool looksAscii = isLetterA("\x41"), looksEbcdic = isLetterA("\xC1");
    if (!looksAscii && !looksEbcdic) continue;
    if (std::pair(looksAscii, looksEbcdic) == std::pair(page.isASCII(), page.isEBCDIC()))
      ++agreeing;
    else
      others.insert(number);
  }
  EXPECT_GE(agreeing, 57);
  // 838 has a table; the others are known only with ICU.
  EXPECT_THAT(others, testing::IsSubsetOf(
                          {813, 838, 1137, 1140, 1141, 1143, 1144, 1146, 1147, 1148, 1149, 1390, 1399}));
  EXPECT_THAT(others, testing::Contains(838));
}

TEST(Ccsid, IsParsedFromNumbersAndNames) {
  for (const auto& row : vel::test::readTable(VEL_TEST_DATA "test/ccsid_texts.tsv")) {
    SCOPED_TRACE(row[0]);
    const VelClCCSID ccsid(row[0].c_str());
    expectCcsid(ccsid, row);
    // The copy of an unknown CCSID is unknown.
    expectCcsid(VelClCCSID(ccsid), row);
    VelClCCSID assigned(VelClCCSID::CCSID_37);
    EXPECT_TRUE(assigned.isValid());
    assigned = ccsid;
    assigned = *&assigned;
    expectCcsid(assigned, row);
  }
  expectCcsid(VelClCCSID(static_cast<const char*>(nullptr)), {"", "0", "???", "0"});
}

TEST(Ccsid, EqualsAnotherNumberOnlyForMarkedLittleEndian) {
  const int numbers[] = {0, 37, 1200, 1208, 13488, 17584, 61955, 65500, 65501};
  for (const int a : numbers)
    for (const int b : numbers) {
      const bool areEqual = a == b || (a == 13488 && b == 65501) || (a == 65501 && b == 13488);
      EXPECT_EQ(VelClCCSID(a) == VelClCCSID(b), areEqual) << a << " " << b;
      EXPECT_EQ(VelClCCSID(a) == static_cast<VelClCCSID::VelEnCCSID>(b), areEqual) << a << " " << b;
    }
}

TEST(Ccsid, KnowsByteOrders) {
  for (const int number : {1200, 13488, 17584, 61955, 65501, 65500, 1208, 37, 0}) {
    const VelClCCSID ccsid(number);
    EXPECT_EQ(ccsid.isUCS2BigEndian(), number == 65500);
    EXPECT_EQ(ccsid.isUCS2LittleEndian(), ccsid.isUCS2() && number != 65500) << number;
    EXPECT_EQ(ccsid.isUCS2HostEndian(), ccsid.isUCS2LittleEndian());
  }
  for (const auto& row : vel::test::readTexts(VEL_TEST_DATA "test/byte_order_marks.tsv"))
    EXPECT_EQ(VelClCCSID::getCCSIDForUCS2EndianId(row.at(1).c_str()), std::stoul(row[0]));
  EXPECT_EQ(VelClCCSID::getCCSIDForUCS2EndianId(VelClConverterABase::getUCS2BigEndianId()), 65500U);
  EXPECT_EQ(VelClCCSID::getCCSIDForUCS2EndianId(VelClConverterABase::getUCS2HostEndianId()), 65501U);
}

}  // namespace
