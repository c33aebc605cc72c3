// The matcher against a literal recursion over all short patterns and texts, and its worst case.
#include <gtest/gtest.h>

#include <string>

#include "util/test_texts.h"
#include "vel_include/vel_util.h"

namespace {

// One rule after the other, in exponential time.
bool matchesRecursively(const char* pattern, const char* text) {
  for (; *pattern != '\0' && *pattern != '*'; ++pattern, ++text)
    if (*text == '\0' || (*pattern != '?' && *pattern != *text)) return false;
  if (*pattern == '\0') return *text == '\0';
  for (; *pattern == '*' || *pattern == '?'; ++pattern)
    if (*pattern == '?' && *text++ == '\0') return false;
  if (*pattern == '\0') return true;
  for (; *text != '\0'; ++text)
    if (*text == *pattern && matchesRecursively(pattern + 1, text + 1)) return true;
  return false;
}

TEST(WildcardPattern, AgreesWithTheRecursionOnAllShortTexts) {
  const auto texts = vel::test::allTexts("ab*", 5);
  int matches = 0;
  for (const std::string& pattern : vel::test::allTexts("ab*?", 5))
    for (const std::string& text : texts) {
      const bool expected = matchesRecursively(pattern.c_str(), text.c_str());
      matches += expected ? 1 : 0;
      ASSERT_EQ(expected, velMatchesWildcardPattern(pattern.c_str(), text.c_str(), true))
          << pattern << " on " << text;
    }
  EXPECT_GT(matches, 10000);
}

TEST(WildcardPattern, MatchesWholeText) {
  struct Row {
    const char* pattern;
    const char* text;
    bool caseSensitive;
    bool matches;
  };
  const Row rows[] = {
      {"*.ini", "TEST.INI", false, true},
      {"*.ini", "TEST.INI", true, false},
      {"T?st.*", "tEST.ini.bak", false, true},
      {"*?", "", true, false},
      {"*a*?", "ba", true, false},
      {"\\*", "*", true, false},
      {nullptr, nullptr, true, true},
      {"[a]", "a", true, false},
      {"\xE9*", "\xE9t\xE9", true, true},
  };
  for (const Row& row : rows)
    EXPECT_EQ(row.matches, velMatchesWildcardPattern(row.pattern, row.text, row.caseSensitive))
        << row.pattern << " on " << row.text;
}

// The recursion would need more steps here than a test can wait for.
TEST(WildcardPattern, ManyStarsTakeTimeOfTheProductOnly) {
  std::string pattern;
  for (int i = 0; i < 100; ++i) pattern += "*a";
  EXPECT_FALSE(velMatchesWildcardPattern((pattern + "*b").c_str(), std::string(10000, 'a').c_str(), false));
  EXPECT_TRUE(velMatchesWildcardPattern(pattern.c_str(), std::string(10000, 'A').c_str(), false));
}

TEST(StringMatchWildcards, FlagMeansCaseSensitive) {
  const char text[] = "x.c";
  EXPECT_EQ(text, VelClStringMatchWildcards("*.c", true).getPattern(text));
  EXPECT_EQ(nullptr, VelClStringMatchWildcards("*.C", true).getPattern(text));
  EXPECT_EQ(text, VelClStringMatchWildcards("*.C", false).getPattern(text));
  EXPECT_EQ(nullptr, VelClStringMatchWildcards("x", true).getPattern(text));
}

}  // namespace
