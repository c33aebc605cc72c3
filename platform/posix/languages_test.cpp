// Languages and code pages from the environment, and sleeping through signals.
#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <clocale>
#include <string>

#include "platform/platform.h"
#include "platform/posix/language_names.h"
#include "platform/test/variable.h"

namespace vel::platform {

namespace {

TEST(PosixLanguages, LocaleNamesGiveLanguageNumbers) {
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
    EXPECT_EQ(languageIdOfLocaleName(row.locale), row.language)
        << (row.locale == nullptr ? "null" : row.locale);
}

TEST(PosixLanguages, FollowTheLocaleVariables) {
  const struct {
    const char *all, *messages, *characters, *lang;
    std::uint32_t user, system;
    bool utf8;
  } rows[] = {{nullptr, nullptr, nullptr, nullptr, 1033, 1033, false},
              {nullptr, nullptr, nullptr, "de_DE.UTF-8", 1031, 1031, true},
              {nullptr, "fr_FR", nullptr, "de_DE.UTF-8", 1036, 1031, true},
              {"C.utf8@x", "fr_FR", nullptr, "de_DE", 1033, 1031, true},
              {"", nullptr, "de_DE.utf8", "xx", 1033, 1033, true},
              {nullptr, nullptr, "de_DE.ISO-8859-15", "de_DE.UTF-8", 1031, 1031, false},
              {nullptr, nullptr, nullptr, "de_DE.UTF-16", 1031, 1031, false}};
  ASSERT_STREQ(std::setlocale(LC_CTYPE, nullptr), "C");
  for (const auto& row : rows) {
    const test::Variable all("LC_ALL", row.all), messages("LC_MESSAGES", row.messages);
    const test::Variable characters("LC_CTYPE", row.characters), lang("LANG", row.lang);
    EXPECT_EQ(userLanguage(), row.user) << &row - rows;
    EXPECT_EQ(systemLanguage(), row.system) << &row - rows;
    EXPECT_EQ(ansiIsUtf8(), row.utf8) << &row - rows;
  }
}

TEST(PosixLanguages, TextsAreCutBetweenCharacters) {
  const struct {
    const char* locale;
    std::u16string text;
    std::size_t capacity;
    std::string bytes;
  } rows[] = {{"C", u"a\u00E9\u20AC\U0001F600b", 10, "a???b"}, {"C.UTF-8", {u'x', 0xD83D}, 9, "x?"},
              {"C.UTF-8", {0xDE00, 0xD83D, u'x'}, 9, "??x"},   {"C.UTF-8", u"a\u20ACb", 3, "a"},
              {"C.UTF-8", u"\U0001F600", 4, "\U0001F600"},     {"C.UTF-8", u"a", 0, ""},
              {"C.UTF-8", u"a\u20ACb", 5, "a\u20ACb"},         {"C", u"ab", 1, "a"}};
  for (const auto& row : rows) {
    ASSERT_NE(std::setlocale(LC_CTYPE, row.locale), nullptr);
    std::string out(16, '#');
    const std::size_t count = utf16ToAnsi(row.text.data(), row.text.size(), out.data(), row.capacity);
    EXPECT_EQ(out.substr(0, count), row.bytes) << &row - rows;
    EXPECT_EQ(out[row.capacity], '#') << &row - rows;
  }
  std::setlocale(LC_CTYPE, "C");
}

volatile sig_atomic_t signalCount = 0;

TEST(PosixClocks, SignalsDoNotShortenSleep) {
  signal(SIGALRM, [](int) { signalCount = signalCount + 1; });
  std::int64_t start = 0, end = 0;
  ASSERT_TRUE(performanceCounter(start));
  ualarm(3000, 3000);
  sleepMilliseconds(60);
  ualarm(0, 0);
  ASSERT_TRUE(performanceCounter(end));
  signal(SIGALRM, SIG_DFL);
  EXPECT_GT(signalCount, 1);
  EXPECT_GE(end - start, performanceFrequency() * 60 / 1000);
}

}  // namespace

}  // namespace vel::platform
