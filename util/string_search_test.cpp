// The search against std::search over all short patterns and texts, with texts that end exactly at
// the end of their memory.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <string>
#include <vector>

#include "util/test_texts.h"
#include "vel_include/vel_util.h"

namespace {

constexpr long kNowhere = -1;

bool sameIgnoringCase(char a, char b) {
  return std::toupper(static_cast<unsigned char>(a)) == std::toupper(static_cast<unsigned char>(b));
}

long offsetOf(const std::string& pattern, const std::string& text, bool ignoreCase) {
  const auto found =
      ignoreCase ? std::search(text.begin(), text.end(), pattern.begin(), pattern.end(), sameIgnoringCase)
                 : std::search(text.begin(), text.end(), pattern.begin(), pattern.end());
  return found == text.end() && !pattern.empty() ? kNowhere : static_cast<long>(found - text.begin());
}

// In a block of its own and without a terminator: sanitizers see a read beyond either end.
long searchedOffset(const VelClStringSearch& search, const std::string& text) {
  const std::vector<char> bytes(text.begin(), text.end());
  const char* begin = bytes.empty() ? "" : bytes.data();
  const char* found = search.getPattern(begin, static_cast<unsigned int>(bytes.size()));
  return found == nullptr ? kNowhere : static_cast<long>(found - begin);
}

TEST(StringSearch, FindsTheFirstOccurrenceInAllShortTexts) {
  struct Row {
    std::string patternLetters;
    std::string textLetters;
    bool ignoreCase;
  };
  const Row rows[] = {{"ab", std::string("ab\0", 3), false}, {"abA", "abA", false}, {"abA", "aBA", true}};
  for (const Row& row : rows) {
    const auto texts = vel::test::allTexts(row.textLetters, 7);
    for (const std::string& pattern : vel::test::allTexts(row.patternLetters, 4)) {
      const VelClStringSearch search(pattern.c_str(), row.ignoreCase);
      for (const std::string& text : texts)
        ASSERT_EQ(offsetOf(pattern, text, row.ignoreCase), searchedOffset(search, text))
            << pattern << " in " << text;
    }
  }
}

TEST(StringSearch, SearchesTerminatedTextsAndHighBytes) {
  const std::string text = std::string(1000, 'x') + "\xFF\x80y";
  EXPECT_EQ(text.c_str() + 1000, VelClStringSearch("\xFF\x80", false).getPattern(text.c_str()));
  EXPECT_EQ(text.c_str() + 1002, VelClStringSearch("Y", true).getPattern(text.c_str()));
  EXPECT_EQ(nullptr, VelClStringSearch("xxy", true).getPattern(text.c_str()));
  EXPECT_EQ(nullptr, VelClStringSearch("x", false).getPattern(nullptr));
}

TEST(Grep, NeverFindsAnything) {
  EXPECT_EQ(nullptr, VelClGrep("a", true).getPattern("a"));
  EXPECT_EQ(nullptr, VelClGrep(1, "a").getPattern("a", 1));
}

}  // namespace
