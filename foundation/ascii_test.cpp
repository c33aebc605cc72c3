#include "foundation/ascii.h"

#include <gtest/gtest.h>

namespace {

TEST(Ascii, NumbersSaturateAt32Bits) {
  const struct {
    const char* text;
    std::int32_t asSigned;
    std::uint32_t asUnsigned;
    int length;  ///< of what vel_strtoul32 takes
  } rows[] = {{"99999999999999999999999999", 2147483647, 4294967295, 26},
              {"0x10", 0, 0, 1},
              {"-99999999999999999999999999", -2147483647 - 1, 0, 27},
              {"-5x", -5, 0, 2},
              {"2147483647", 2147483647, 2147483647, 10},
              {"--5", 0, 0, 0},
              {"2147483648", 2147483647, 2147483648, 10},
              {"007", 7, 7, 3},
              {"4294967295", 2147483647, 4294967295, 10},
              {"x1", 0, 0, 0},
              {"4294967296", 2147483647, 4294967295, 10},
              {" +", 0, 0, 0},
              {"-2147483648", -2147483647 - 1, 0, 11},
              {"-", 0, 0, 0},
              {"-2147483649", -2147483647 - 1, 0, 11},
              {"", 0, 0, 0},
              {" \t\n\v\f\r+42 ", 42, 42, 9}};
  for (const auto& row : rows) {
    const char* end = nullptr;
    EXPECT_EQ(vel::vel_atol32(row.text), row.asSigned) << row.text;
    EXPECT_EQ(vel::vel_strtoul32(row.text, &end), row.asUnsigned) << row.text;
    EXPECT_EQ(end - row.text, row.length) << row.text;
  }
  EXPECT_EQ(vel::vel_strtoul32("12", nullptr), 12u);
}

}  // namespace
