// CCSIDs from numbers and names. The expected properties are read from ccsids.tsv, which the tables are
// generated from; the families (ASCII, EBCDIC) are also compared with the mappings, an independent source.
#include "codepage/test/outcome.h"
#include "platform/test/test.h"

namespace {

/// Returns the properties as the flags of ccsids.tsv.
unsigned int flagsOf(const VelClCCSID& ccsid) {
  return (ccsid.isASCII() ? 0x01U : 0) | (ccsid.isEBCDIC() ? 0x02U : 0) | (ccsid.isDBCS() ? 0x04U : 0) |
         (ccsid.isSBCS() ? 0x08U : 0) | (ccsid.isUCS2() ? 0x40U : 0);
}

void expectCcsid(const VelClCCSID& ccsid, const std::string& value, const std::string& name,
                 const std::string& flags) {
  EXPECT_EQ(std::to_string(ccsid.getAsInt()), value);
  EXPECT_EQ(ccsid.getName(), name);
  EXPECT_EQ(ccsid.isValid(), name != "???");
  EXPECT_EQ(flagsOf(ccsid), std::stoul(flags, nullptr, 16));
}

TEST(Ccsid, EveryNumberHasItsProperties) {
  std::map<int, std::vector<std::string>> rows;
  for (const auto& row : vel::test::readTable(VEL_TEST_DATA "ccsids.tsv")) rows[std::stoi(row[0])] = row;
  // Callers rely on every row; this finds a row that was lost by mistake.
  ASSERT_EQ(rows.size(), 430U);
  const std::vector<std::string> unknown = {"", "???", "0"};
  for (int number = 0; number <= 0xFFFF; ++number) {
    const auto& row = rows.contains(number) ? rows[number] : unknown;
    expectCcsid(VelClCCSID(number), std::to_string(number), row[1], row[2]);
  }
}

// A page is ASCII if it has "A" at 0x41, EBCDIC if at 0xC1. Intentional: the properties of a few pages
// deviate.
TEST(Ccsid, FamiliesMatchTheMappingsOfCapitalA) {
  std::set<int> deviating;
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
      deviating.insert(number);
  }
  // 57 pages agree without ICU; with it there are more.
  EXPECT_GE(agreeing, 57);
  // 838 has a table; the others are known only with ICU.
  EXPECT_THAT(deviating, testing::IsSubsetOf(
                             {813, 838, 1137, 1140, 1141, 1143, 1144, 1146, 1147, 1148, 1149, 1390, 1399}));
  EXPECT_THAT(deviating, testing::Contains(838));
}

TEST(Ccsid, IsParsedFromNumbersAndNames) {
  for (const auto& row : vel::test::readTable(VEL_TEST_DATA "test/ccsid_texts.tsv")) {
    SCOPED_TRACE(row[0]);
    const VelClCCSID ccsid(row[0].c_str());
    const auto expectRow = [&row](const VelClCCSID& actual) { expectCcsid(actual, row[1], row[2], row[3]); };
    expectRow(ccsid);
    // The copy of an unknown CCSID is unknown.
    expectRow(VelClCCSID(ccsid));
    VelClCCSID assigned(VelClCCSID::CCSID_37);
    EXPECT_TRUE(assigned.isValid());
    assigned = ccsid;
    // Self-assignment changes nothing; "*&" keeps the compiler from warning.
    assigned = *&assigned;
    expectRow(assigned);
  }
  expectCcsid(VelClCCSID(static_cast<const char*>(nullptr)), "0", "???", "0");
}

TEST(Ccsid, OnlyUcs2AndItsLittleEndianFormAreEqual) {
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
