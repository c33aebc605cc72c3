// The search against std::search over all short patterns and texts.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <string>
#include <vector>

#include "util/test/texts.h"
#include "vel_include/vel_util.h"

namespace {

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
    const auto texts = vel::test::allTexts(row.textLetters, 6);
    for (const std::string& pattern : vel::test::allTexts(row.patternLetters, 4)) {
      const VelClStringSearch search(pattern.c_str(), row.ignoreCase);
      for (const std::string& text : texts) {
        ASSERT_EQ(expectedOffset(pattern, text, row.ignoreCase), offset(search, {text.begin(), text.end()}))
            << pattern << " in " << text;
      }
    }
  }
}

TEST(StringSearch, SearchesTerminatedTextsAndHighBytes) {
  const std::string text = std::string(1000, 'x') + "\xFF\x80y";
  EXPECT_EQ(text.c_str() + 1000, VelClStringSearch("\xFF\x80", false).getPattern(text.c_str()));
  EXPECT_EQ(nullptr, VelClStringSearch("xxy", true).getPattern(text.c_str()));
  EXPECT_EQ(nullptr, VelClStringSearch("x", false).getPattern(nullptr));
  EXPECT_EQ(nullptr, VelClGrep(1, "x").getPattern(text.c_str()));
}

}  // namespace
