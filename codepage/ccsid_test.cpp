// CCSIDs from numbers and names, against the table's source file.
#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <sstream>
#include <string>

#include "vel_include/vel_codepage.h"

namespace {

unsigned int flagsOf(const VelClCCSID& ccsid) {
  return (ccsid.isASCII() ? 0x01U : 0) | (ccsid.isEBCDIC() ? 0x02U : 0) | (ccsid.isDBCS() ? 0x04U : 0) |
         (ccsid.isSBCS() ? 0x08U : 0) | (ccsid.isUCS2() ? 0x40U : 0);
}

struct SourceRow {
  std::string name;
  unsigned int flags;
};

std::map<int, SourceRow> sourceRows() {
  std::map<int, SourceRow> rows;
  std::ifstream source(VEL_CODEPAGE_DATA_DIR "/ccsids.tsv");
  std::string line;
  std::getline(source, line);
  while (std::getline(source, line)) {
    std::istringstream fields(line);
    int number = 0;
    SourceRow row;
    fields >> number >> row.name >> std::hex >> row.flags;
    rows[number] = row;
  }
  return rows;
}

TEST(Ccsid, EveryNumberHasItsProperties) {
  const auto rows = sourceRows();
  ASSERT_EQ(rows.size(), 430U);
  for (int number = 0; number <= 0xFFFF; ++number) {
    const auto row = rows.find(number);
    const VelClCCSID ccsid(number);
    EXPECT_EQ(ccsid.getAsInt(), number);
    EXPECT_EQ(ccsid.isValid(), number != 0 && row != rows.end()) << number;
    EXPECT_EQ(ccsid.getName(), row == rows.end() ? "???" : row->second.name) << number;
    EXPECT_EQ(flagsOf(ccsid), row == rows.end() ? 0 : row->second.flags) << number;
  }
}

TEST(Ccsid, IsMadeFromTexts) {
  const struct {
    const char* text;
    int number;
    const char* name;
    bool isValid;
    unsigned int flags;
  } rows[] = {
      {"utf-8", 1208, "UTF-8", true, 0x01},
      {"UTF-8", 1208, "UTF-8", true, 0x01},
      {"ucs-2b", 65500, "UCS-2B", true, 0x40},
      {"Ucs-2", 13488, "UCS-2", true, 0x40},
      {"iso8859-15", 923, "ISO8859-15", true, 0x09},
      {"ISO8859-7", 813, "ISO8859-7", true, 0x08},
      {"GB-18030", 1392, "GB-18030", true, 0x05},
      {"zan33722", 954, "ZAN33722", true, 0x05},
      {"33722", 33722, "33722", true, 0x05},
      {"850", 850, "850", true, 0x09},
      {"4946", 4946, "850", true, 0x01},
      {"037", 37, "37", true, 0x0A},
      {"4133", 4133, "037", true, 0x02},
      {"1252abc", 1252, "1252", true, 0x09},
      // Found by no name: the number is taken, its properties are not.
      {"CP1252", 1252, "?\?\?", false, 0},
      {"CP1200", 1200, "?\?\?", false, 0},
      {"ISO8859-3", 8859, "?\?\?", false, 0},
      {"-5", 5, "?\?\?", false, 0},
      {"-37", 37, "?\?\?", false, 0},
      {" 850", 850, "?\?\?", false, 0},
      {"latin", 0, "?\?\?", false, 0},
      {"?\?\?", 0, "?\?\?", false, 0},
      {"", 0, "?\?\?", false, 0},
      {nullptr, 0, "?\?\?", false, 0},
      {"0", 0, "?\?\?", false, 0},
      {"99999999999999999999", 0x7FFFFFFF, "?\?\?", false, 0},
  };
  for (const auto& row : rows) {
    const VelClCCSID ccsid(row.text);
    SCOPED_TRACE(row.text == nullptr ? "null" : row.text);
    EXPECT_EQ(ccsid.getAsInt(), row.number);
    EXPECT_STREQ(ccsid.getName(), row.name);
    EXPECT_EQ(ccsid.isValid(), row.isValid);
    EXPECT_EQ(flagsOf(ccsid), row.flags);
    // A copy is as unknown as its original.
    VelClCCSID copy(VelClCCSID::CCSID_37);
    EXPECT_TRUE(copy.isValid());
    copy = ccsid;
    EXPECT_EQ(VelClCCSID(copy).isValid(), row.isValid);
    EXPECT_EQ(copy.getAsInt(), row.number);
  }
}

TEST(Ccsid, OnlyTheMarkedLittleEndianIsFolded) {
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
  const struct {
    const char* mark;
    int ccsid;
  } rows[] = {{"\xFE\xFF", 65500},
              {"\xFF\xFE", 65501},
              {"\xFE\xFFx", 65500},
              {"\xFE", 0},
              {"\xFF\xFF", 0},
              {"\xFE\xFE", 0},
              {"", 0}};
  for (const auto& row : rows)
    EXPECT_EQ(static_cast<int>(VelClCCSID::getCCSIDForUCS2EndianId(row.mark)), row.ccsid);
  EXPECT_EQ(VelClCCSID::getCCSIDForUCS2EndianId(VelClConverterABase::getUCS2BigEndianId()), 65500U);
  EXPECT_EQ(VelClCCSID::getCCSIDForUCS2EndianId(VelClConverterABase::getUCS2HostEndianId()), 65501U);
}

}  // namespace
