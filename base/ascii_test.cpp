// Tests parsing decimal numbers.
#include "base/ascii.h"

#include "platform/test/test.h"

namespace {

TEST(Ascii, ParsesNumbers) {
  auto rows = vel::test::readTable(VEL_TEST_DATA "test/numbers.tsv");
  rows.push_back({" \t\n\v\f\r+42 ", "42", "42", "9"});
  for (const auto& row : rows) {
    const std::string& text = row.at(0);
    const char* end = nullptr;
    EXPECT_EQ(vel::parseInt32(text.c_str()), std::stol(row.at(1))) << text;
    EXPECT_EQ(vel::parseUint32(text.c_str(), &end), std::stoul(row.at(2))) << text;
    EXPECT_EQ(end - text.c_str(), std::stol(row.at(3))) << text;
  }
  EXPECT_EQ(vel::parseUint32("12", nullptr), 12u);
}

}  // namespace
