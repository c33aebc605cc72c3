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

TEST(LanguageNames, AreExact) {
  const std::pair<const char*, std::uint32_t> rows[] = {{"zh", 0x804},
                                                        {"zh_Hant", 0x404},
                                                        {"zh_Hant_TW", 0x404},
                                                        {"zh-hant-hk", 0xC04},
                                                        {"zh_TW.Big5", 0x404},
                                                        {"zh_HK", 0xC04},
                                                        {"zh_Hans_CN", 0x804},
                                                        {"zh_Hans_HK", 0},
                                                        {"zh_Hant_CN", 0},
                                                        {"sr", 0x281A},
                                                        {"sr_Latn", 0x241A},
                                                        {"sr_RS@latin", 0x241A},
                                                        {"sr_ME@latin", 0x2C1A},
                                                        {"sr_Cyrl_RS", 0x281A},
                                                        {"sr@cyrillic", 0x281A},
                                                        {"sr_XX", 0},
                                                        {"pt_BR", 0x416},
                                                        {"pt_PT", 0x816},
                                                        {"pt_AO", 0},
                                                        {"es_419", 0x580A},
                                                        {"es_ES", 0xC0A},
                                                        {"es_GQ", 0},
                                                        {"ca_ES@valencia", 0x803},
                                                        {"de_DE@euro", 0x407},
                                                        {"de_DE@other", 0},
                                                        {"de_", 0},
                                                        {"_DE", 0},
                                                        {"de_at_DE", 0},
                                                        {"tlh", 0},
                                                        {"C", 0},
                                                        {"", 0},
                                                        {"zh_Hant_TW_and_more_text", 0}};
  for (const auto& [name, number] : rows) EXPECT_EQ(languageIdOfExactLocaleName(name), number) << name;
}

}  // namespace
}  // namespace vel
