// Sleeping through signals, and languages and code pages from the environment.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/time.h>

#include <clocale>
#include <cstdlib>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "platform/platform.h"

namespace vel::platform {

namespace {

volatile sig_atomic_t signalCount = 0;

TEST(PosixClocks, SignalsDoNotShortenSleep) {
  struct sigaction action {};
  struct sigaction oldAction {};
  action.sa_handler = [](int) { signalCount = signalCount + 1; };
  sigaction(SIGALRM, &action, &oldAction);
  const itimerval every3ms{{0, 3000}, {0, 3000}};
  setitimer(ITIMER_REAL, &every3ms, nullptr);
  std::int64_t start = 0;
  std::int64_t end = 0;
  ASSERT_TRUE(performanceCounter(start));
  sleepMilliseconds(60);
  ASSERT_TRUE(performanceCounter(end));
  const itimerval never{};
  setitimer(ITIMER_REAL, &never, nullptr);
  sigaction(SIGALRM, &oldAction, nullptr);
  EXPECT_GT(signalCount, 1);
  EXPECT_GE(end - start, performanceFrequency() * 60 / 1000);
}

/// Locale variables for one test; the others are unset.
class LocaleVariables {
 public:
  explicit LocaleVariables(const std::vector<std::pair<const char*, const char*>>& values) {
    for (const char* name : {"LC_ALL", "LC_MESSAGES", "LC_CTYPE", "LANG"}) {
      const char* const value = std::getenv(name);
      if (value != nullptr) before_.emplace_back(name, value);
      unsetenv(name);
    }
    for (const auto& [name, value] : values) setenv(name, value, 1);
  }
  LocaleVariables(const LocaleVariables&) = delete;
  LocaleVariables& operator=(const LocaleVariables&) = delete;
  ~LocaleVariables() {
    for (const char* name : {"LC_ALL", "LC_MESSAGES", "LC_CTYPE", "LANG"}) unsetenv(name);
    for (const auto& [name, value] : before_) setenv(name.c_str(), value.c_str(), 1);
  }

 private:
  std::vector<std::pair<std::string, std::string>> before_;
};

TEST(PosixLanguages, FollowTheLocaleVariables) {
  struct Row {
    std::vector<std::pair<const char*, const char*>> variables;
    std::uint32_t user;
    std::uint32_t system;
    bool utf8;
  };
  const Row rows[] = {
      {{}, 1033, 1033, false},
      {{{"LANG", "de_DE.UTF-8"}}, 1031, 1031, true},
      {{{"LANG", "de_DE.UTF-8"}, {"LC_MESSAGES", "fr_FR"}}, 1036, 1031, true},
      {{{"LANG", "de_DE"}, {"LC_MESSAGES", "fr_FR"}, {"LC_ALL", "C.utf8@x"}}, 1033, 1031, true},
      {{{"LC_ALL", ""}, {"LC_CTYPE", "de_DE.utf8"}, {"LANG", "xx"}}, 1033, 1033, true},
      {{{"LC_CTYPE", "de_DE.ISO-8859-15"}, {"LANG", "de_DE.UTF-8"}}, 1031, 1031, false},
      {{{"LANG", "de_DE.UTF-16"}}, 1031, 1031, false},
  };
  ASSERT_STREQ(std::setlocale(LC_CTYPE, nullptr), "C");
  for (const Row& row : rows) {
    const LocaleVariables variables(row.variables);
    EXPECT_EQ(userLanguage(), row.user) << &row - rows;
    EXPECT_EQ(systemLanguage(), row.system) << &row - rows;
    EXPECT_EQ(ansiIsUtf8(), row.utf8) << &row - rows;
  }
}

TEST(PosixLanguages, TextsAreCutBetweenCharacters) {
  struct Row {
    const char* locale;
    std::u16string text;
    std::size_t capacity;
    std::string bytes;
  };
  const Row rows[] = {
      {"C", u"a\u00E9\u20AC\U0001F600b", 10, "a???b"},
      {"C", u"ab", 1, "a"},
      {"C.UTF-8", u"a\u20ACb", 5,
       "a\xE2\x82\xAC"
       "b"},
      {"C.UTF-8", u"a\u20ACb", 3, "a"},
      {"C.UTF-8", u"\U0001F600", 4, "\xF0\x9F\x98\x80"},
      {"C.UTF-8", u"a", 0, ""},
      {"C.UTF-8", {u'x', 0xD83D}, 9, "x?"},
      {"C.UTF-8", {0xDE00, 0xD83D, u'x'}, 9, "??x"},
  };
  for (const Row& row : rows) {
    ASSERT_NE(std::setlocale(LC_CTYPE, row.locale), nullptr);
    char out[16];
    std::memset(out, '#', sizeof out);
    const std::size_t count = utf16ToAnsi(row.text.data(), row.text.size(), out, row.capacity);
    EXPECT_EQ(std::string(out, count), row.bytes) << &row - rows;
    EXPECT_EQ(out[row.capacity], '#') << &row - rows;
  }
  std::setlocale(LC_CTYPE, "C");
}

}  // namespace

}  // namespace vel::platform
