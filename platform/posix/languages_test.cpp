// Tests languages and code pages of the environment, texts in these code pages, and sleeping through signals.
#include <signal.h>
#include <unistd.h>

#include <clocale>

#include "base/language_names.h"
#include "platform/clocks.h"
#include "platform/code_pages.h"
#include "platform/languages.h"
#include "platform/test/test.h"

namespace vel::platform {

namespace {

TEST(PosixLanguages, AreDerivedFromLocaleNames) {
  for (const auto& row : test::readTable(VEL_TEST_DATA "test/posix/locale_languages.tsv"))
    EXPECT_EQ(languageIdOfLocaleName(row[0].c_str()), std::stoul(row.at(1), nullptr, 0)) << row[0];
  EXPECT_EQ(languageIdOfLocaleName(nullptr), 0U);
}

TEST(PosixLanguages, AreThoseOfTheLocaleVariables) {
  ASSERT_STREQ(std::setlocale(LC_CTYPE, nullptr), "C");
  for (const auto& row : test::readTable(VEL_TEST_DATA "test/posix/locale_variables.tsv")) {
    const auto value = [&row](std::size_t column) {
      return row[column] == "-" ? nullptr : row[column].c_str();
    };
    const test::Variable all("LC_ALL", value(0)), messages("LC_MESSAGES", value(1));
    const test::Variable characters("LC_CTYPE", value(2)), lang("LANG", value(3));
    const std::vector<std::string> found = {std::to_string(userLanguage()), std::to_string(systemLanguage()),
                                            ansiIsUtf8() ? "yes" : "no"};
    EXPECT_EQ(found, std::vector(row.begin() + 4, row.end())) << testing::PrintToString(row);
  }
}

TEST(CodePages, AreThoseOfTheLocale) {
  for (const auto& row : test::readTable(VEL_TEST_DATA "test/posix/locale_code_pages.tsv")) {
    const test::Variable locale("LC_ALL", row[0].c_str());
    EXPECT_EQ(ansiCodePage(), std::stoul(row.at(1))) << row[0];
    EXPECT_EQ(oemCodePage(), std::stoul(row[1])) << row[0];
  }
}

TEST(CodePages, HoldTextsThatFit) {
  for (const auto& row : test::readTexts(VEL_TEST_DATA "test/posix/page_texts.tsv")) {
    const auto ccsid = static_cast<std::uint32_t>(std::stoul(row[0]));
    const std::u16string text = test::unitsOf(row[1]);
    const std::string& expected = row.at(2);
    for (std::size_t room = 0; room <= expected.size() + 1; ++room) {
      std::string out(expected.size() + 2, 'Z');
      const std::size_t size = utf16ToCodePage(ccsid, text.data(), text.size(), out.data(), room);
      EXPECT_EQ(size, room < expected.size() ? 0 : expected.size()) << ccsid << " " << room;
      EXPECT_EQ(out.substr(room), std::string(out.size() - room, 'Z'));
      EXPECT_EQ(out.substr(0, size), expected.substr(0, size));
    }
  }
}

volatile sig_atomic_t signalCount = 0;

TEST(PosixClocks, SignalsDoNotShortenSleep) {
  signal(SIGALRM, [](int) { signalCount = signalCount + 1; });
  std::int64_t start = 0, end = 0;
  ASSERT_TRUE(performanceCounter(start));
  ualarm(3000, 3000);
  std::int64_t sleeps = 0;
  // Several signals may be delivered as one.
  for (; signalCount < 2 || sleeps == 0; ++sleeps) sleepMilliseconds(60);
  ualarm(0, 0);
  ASSERT_TRUE(performanceCounter(end));
  signal(SIGALRM, SIG_DFL);
  EXPECT_GE(end - start, sleeps * performanceFrequency() * 60 / 1000);
}

}  // namespace

}  // namespace vel::platform
