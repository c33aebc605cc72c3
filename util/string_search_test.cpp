// Search and wildcards against slow, obvious answers over all short patterns and texts, and their worst
// cases.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <string>
#include <vector>

#include "vel_include/vel_util.h"

namespace {

/// Every text of at most `longest` letters, the empty one first.
std::vector<std::string> allTexts(const std::string& letters, std::size_t longest) {
  std::vector<std::string> texts{""};
  for (std::size_t at = 0; at < texts.size(); ++at)
    for (const char letter : letters)
      if (texts[at].size() < longest) texts.push_back(texts[at] + letter);
  return texts;
}

constexpr std::ptrdiff_t kNowhere = -1;

std::ptrdiff_t expectedOffset(const std::string& pattern, const std::string& text, bool ignoreCase) {
  const auto found =
      std::search(text.begin(), text.end(), pattern.begin(), pattern.end(),
                  [&](char a, char b) { return ignoreCase ? std::toupper(a) == std::toupper(b) : a == b; });
  return found == text.end() && !pattern.empty() ? kNowhere : found - text.begin();
}

// In a block of its own and without a terminator: sanitizers see a read beyond either end.
std::ptrdiff_t offset(const VelClStringSearch& search, const std::vector<char>& text) {
  const char* begin = text.empty() ? "" : text.data();
  const char* found = search.getPattern(begin, static_cast<unsigned int>(text.size()));
  return found == nullptr ? kNowhere : found - begin;
}

TEST(StringSearch, FindsTheFirstOccurrenceInAllShortTexts) {
  const struct {
    std::string patternLetters, textLetters;
    bool ignoreCase;
  } rows[] = {{"ab", std::string("ab\0", 3), false}, {"abA", "abA", false}, {"abA", "aBA", true}};
  for (const auto& row : rows) {
    const auto texts = allTexts(row.textLetters, 6);
    for (const std::string& pattern : allTexts(row.patternLetters, 4)) {
      const VelClStringSearch search(pattern.c_str(), row.ignoreCase);
      for (const std::string& text : texts)
        ASSERT_EQ(expectedOffset(pattern, text, row.ignoreCase), offset(search, {text.begin(), text.end()}))
            << pattern << " in " << text;
    }
  }
}

// Longer ones are looked through in blocks.
TEST(StringSearch, FindsTheFirstOccurrenceInLongTexts) {
  const auto texts = allTexts("ab", 5);
  for (std::size_t length = 0; length < 300; length += 7)
    for (const std::string& pattern : allTexts("ab", 4))
      for (const std::string& end : texts) {
        const std::string text = std::string(length, 'a') + end + std::string(length % 90, 'b');
        ASSERT_EQ(expectedOffset(pattern, text, false),
                  offset(VelClStringSearch(pattern.c_str(), false), {text.begin(), text.end()}))
            << pattern << " in " << text;
      }
}

// Every place is like a start: the search must not compare all of the pattern at each of them.
TEST(StringSearch, FindsLongPatternsInTextsFullOfTheirEnds) {
  const std::string pattern = std::string(1000, 'a') + "b" + std::string(1000, 'a');
  const std::string text = std::string(20'000, 'a') + pattern;
  EXPECT_EQ(text.c_str() + 20'000, VelClStringSearch(pattern.c_str(), false).getPattern(text.c_str()));
}

TEST(StringSearch, SearchesTerminatedTextsAndHighBytes) {
  const std::string text = std::string(1000, 'x') + "\xFF\x80y";
  EXPECT_EQ(text.c_str() + 1000, VelClStringSearch("\xFF\x80", false).getPattern(text.c_str()));
  EXPECT_EQ(nullptr, VelClStringSearch("xxy", true).getPattern(text.c_str()));
  EXPECT_EQ(nullptr, VelClStringSearch("x", false).getPattern(nullptr));
  EXPECT_EQ(nullptr, VelClGrep(1, "x").getPattern(text.c_str()));
}

// In exponential time.
bool matchesRecursively(const char* pattern, const char* text) {
  if (*pattern == '*')
    return matchesRecursively(pattern + 1, text) || (*text != '\0' && matchesRecursively(pattern, text + 1));
  if (*pattern == '\0' || *text == '\0') return *pattern == *text;
  return (*pattern == '?' || *pattern == *text) && matchesRecursively(pattern + 1, text + 1);
}

TEST(WildcardPattern, AgreesWithTheRecursionOnAllShortTexts) {
  const auto texts = allTexts("ab*", 5);
  for (const std::string& pattern : allTexts("ab*?", 5))
    for (const std::string& text : texts)
      ASSERT_EQ(matchesRecursively(pattern.c_str(), text.c_str()),
                velMatchesWildcardPattern(pattern.c_str(), text.c_str(), true))
          << pattern << " on " << text;
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
