#include "platform/posix/language_names.h"

#include <gtest/gtest.h>

namespace {

TEST(LanguageNames, LocaleNamesGiveLanguageNumbers) {
  struct Row {
    const char* locale;
    std::uint32_t language;
  };
  const Row rows[] = {
      {"de_DE.UTF-8", 0x407},
      {"de_AT@euro", 0xC07},
      {"de", 0x407},
      {"DE_ch", 0x807},
      {"de_XX", 0x407},
      {"en_US.UTF-8", 0x409},
      {"en-GB", 0x809},
      {"en_IN", 0x4009},
      {"pt_BR", 0x416},
      {"pt", 0x416},
      {"pt_PT", 0x816},
      {"es_ES", 0xC0A},
      {"zh_TW.Big5", 0x404},
      {"zh_CN", 0x804},
      {"nb_NO", 0x414},
      {"fil_PH", 0x464},
      {"af", 0x436},
      {"zu_ZA", 0x435},
      {"", 0},
      {"C", 0},
      {"C.UTF-8", 0},
      {"POSIX", 0},
      {"xx_DE", 0},
      {"d", 0},
      {"deu_DE", 0},
      {"_DE", 0},
      {".UTF-8", 0},
      {"german", 0},
      {nullptr, 0},
      {"de_", 0x407},
      {"de_AT_x", 0x407},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(vel::platform::languageIdOfLocaleName(row.locale), row.language)
        << (row.locale == nullptr ? "null" : row.locale);
  }
}

}  // namespace
