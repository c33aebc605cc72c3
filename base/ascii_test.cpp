// Tests parsing decimal numbers.
#include "base/ascii.h"

#include <gtest/gtest.h>

#include "platform/test/table.h"

namespace {

TEST(Ascii, NumbersSaturateAt32Bits) {
  auto rows = vel::test::readTable(VEL_TEST_DATA "test/numbers.tsv");
  rows.push_back({" \t\n\v\f\r+42 ", "42", "42", "9"});
  for (const auto& row : rows) {
    const char* end = nullptr;
    EXPECT_EQ(vel::parseInt32(row[0].c_str()), std::stol(row.at(1))) << row[0];
    EXPECT_EQ(vel::parseUint32(row[0].c_str(), &end), std::stoul(row.at(2))) << row[0];
    EXPECT_EQ(end - row[0].c_str(), std::stol(row.at(3))) << row[0];
  }
  EXPECT_EQ(vel::parseUint32("12", nullptr), 12u);
}

}  // namespace
