// The matcher against a literal recursion over all short patterns and texts, and its worst case.
#include <gtest/gtest.h>

#include <string>

#include "util/test/texts.h"
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
  for (const std::string& pattern : vel::test::allTexts("ab*?", 5)) {
    for (const std::string& text : texts) {
      ASSERT_EQ(matchesRecursively(pattern.c_str(), text.c_str()),
                velMatchesWildcardPattern(pattern.c_str(), text.c_str(), true))
          << pattern << " on " << text;
    }
  }
}

TEST(WildcardPattern, ManyStarsTakeTimeOfTheProductOnly) {
  std::string pattern;
  for (int i = 0; i < 100; ++i) pattern += "*a";
  EXPECT_FALSE(velMatchesWildcardPattern((pattern + "*b").c_str(), std::string(10000, 'a').c_str(), false));
  EXPECT_TRUE(velMatchesWildcardPattern(pattern.c_str(), std::string(10000, 'A').c_str(), false));
}

TEST(StringMatchWildcards, GivesTheWholeTextByItsCaseRule) {
  const struct {
    const char *pattern, *text;
    bool caseSensitive, matches;
  } rows[] = {{"*.ini", "TEST.INI", false, true}, {"\\*", "*", true, false}, {"x", "xy", true, false},
              {"*.ini", "TEST.INI", true, false}, {nullptr, "", true, true}, {"*?", "", true, false},
              {"\xE9?", "\xE9\xE9", false, true}, {"[a]", "a", true, false}};
  for (const auto& row : rows) {
    EXPECT_EQ(row.matches ? row.text : nullptr,
              VelClStringMatchWildcards(row.pattern, row.caseSensitive).getPattern(row.text))
        << row.text;
  }
  EXPECT_TRUE(velMatchesWildcardPattern("*", nullptr, true));
}

}  // namespace
