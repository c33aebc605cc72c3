// Languages and code pages from the environment, and sleeping through signals.
#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <clocale>

#include "platform/platform.h"
#include "platform/posix/language_names.h"
#include "platform/test/table.h"
#include "platform/test/variable.h"

namespace vel::platform {

namespace {

TEST(PosixLanguages, LocaleNamesGiveLanguageNumbers) {
  for (const auto& row : test::readTable(VEL_TEST_DATA "test/posix/locale_languages.tsv"))
    EXPECT_EQ(languageIdOfLocaleName(row[0].c_str()), std::stoul(row.at(1), nullptr, 0)) << row[0];
  EXPECT_EQ(languageIdOfLocaleName(nullptr), 0U);
}

TEST(PosixLanguages, FollowTheLocaleVariables) {
  ASSERT_STREQ(std::setlocale(LC_CTYPE, nullptr), "C");
  for (const auto& row : test::readTable(VEL_TEST_DATA "test/posix/locale_variables.tsv")) {
    const auto value = [&row](std::size_t column) {
      return row[column] == "-" ? nullptr : row[column].c_str();
    };
    const test::Variable all("LC_ALL", value(0)), messages("LC_MESSAGES", value(1));
    const test::Variable characters("LC_CTYPE", value(2)), lang("LANG", value(3));
    const std::vector<std::string> found = {std::to_string(userLanguage()), std::to_string(systemLanguage()),
                                            ansiIsUtf8() ? "yes" : "no"};
    EXPECT_TRUE(std::equal(found.begin(), found.end(), row.begin() + 4, row.end()))
        << testing::PrintToString(row);
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
