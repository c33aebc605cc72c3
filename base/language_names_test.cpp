#include "base/language_names.h"

#include <gtest/gtest.h>

#include <utility>

namespace vel {
namespace {

TEST(LanguageNames, AreThoseOfTheirNumbers) {
  const std::pair<std::uint32_t, const char*> rows[] = {
      {0x407, "de"},    {0x7, "de"},   {0xC07, "de_AT"}, {0x804, "zh_CN"}, {0x404, "zh_TW"}, {0x416, "pt_BR"},
      {0x816, "pt_PT"}, {0x414, "nb"}, {0x464, "fil"},   {0x1A, "hr"},     {0x3C, "ga"},     {0x9, "en"}};
  for (const auto& [number, expected] : rows) {
    char name[kMaxLocaleName + 1] = "";
    EXPECT_TRUE(localeNameOfLanguageId(number, name));
    EXPECT_STREQ(name, expected) << number;
    // A number without territory is read back as that of the main territory.
    EXPECT_EQ(languageIdOfLocaleName(name) & (number > 0x3FF ? 0xFFFF : 0x3FF), number);
  }
  char name[kMaxLocaleName + 1] = "kept";
  for (const std::uint32_t unknown : {0U, 0x3FFU, 0xFC07U, 0x10407U}) {
    EXPECT_FALSE(localeNameOfLanguageId(unknown, name)) << unknown;
    EXPECT_STREQ(name, "kept");
  }
}

}  // namespace
}  // namespace vel
