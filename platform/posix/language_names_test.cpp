#include "platform/posix/language_names.h"

#include <gtest/gtest.h>

namespace {

TEST(LanguageNames, LocaleNamesGiveLanguageNumbers) {
  const struct {
    const char* locale;
    std::uint32_t language;
  } rows[] = {{"de_DE.UTF-8", 0x407}, {"fil_PH", 0x464}, {"nb_NO", 0x414}, {"af", 0x436}, {"_DE", 0},
              {"en_US.UTF-8", 0x409}, {"DE_ch", 0x807},  {"zu_ZA", 0x435}, {"deu_DE", 0}, {"C", 0},
              {"de_AT@euro", 0xC07},  {"de_XX", 0x407},  {"C.UTF-8", 0},   {"german", 0}, {"d", 0},
              {"zh_TW.Big5", 0x404},  {"en-GB", 0x809},  {"de_", 0x407},   {"POSIX", 0},  {"", 0},
              {"de_AT_x", 0x407},     {"pt_PT", 0x816},  {"de", 0x407},    {"xx_DE", 0},  {"en_IN", 0x4009},
              {"es_ES", 0xC0A},       {"pt", 0x416},     {nullptr, 0}};
  for (const auto& row : rows)
    EXPECT_EQ(vel::platform::languageIdOfLocaleName(row.locale), row.language)
        << (row.locale == nullptr ? "null" : row.locale);
}

}  // namespace
