// Compares searches in long texts with std::search, and tests the worst cases of search and wildcards.
// fuzz/search_fuzz.cpp tests short texts.
#include "platform/test/guarded_memory.h"
#include "platform/test/test.h"
#include "vel_include/vel_util.h"

namespace {

/// Returns every text of at most `longest` letters, the empty one first.
std::vector<std::string> allTexts(const std::string& letters, std::size_t longest) {
  std::vector<std::string> texts{""};
  for (std::size_t at = 0; at < texts.size(); ++at)
    for (const char letter : letters)
      if (texts[at].size() < longest) texts.push_back(texts[at] + letter);
  return texts;
}

// Long texts are searched in blocks. They are not NUL-terminated, so that sanitizers notice a read past the
// end.
TEST(StringSearch, FindsTheFirstOccurrenceInLongTexts) {
  const auto texts = allTexts("ab", 5);
  for (std::size_t length = 1; length < 300; length += 7)
    for (const std::string& pattern : allTexts("ab", 4))
      for (const std::string& end : texts) {
        std::vector<char> text(length, 'a');
        text.insert(text.end(), end.begin(), end.end());
        text.insert(text.end(), length % 90, 'b');
        const auto expected = std::search(text.begin(), text.end(), pattern.begin(), pattern.end());
        const char* const found = VelClStringSearch(pattern.c_str(), false)
                                      .getPattern(text.data(), static_cast<unsigned int>(text.size()));
        ASSERT_EQ(found != nullptr ? found - text.data() : std::ssize(text), expected - text.begin())
            << pattern << " in " << length << " times a, " << end;
      }
}

TEST(StringSearch, DoesNotReadBytesAfterTheGivenLength) {
  const VelClStringSearch search("xxa", false);
  const vel::test::GuardedMemory memory(100);
  for (unsigned int length = 1; length <= 100; ++length) {
    char* const text = memory.place(length, true);
    std::memset(text, 'x', length);
    EXPECT_EQ(search.getPattern(text, length), nullptr) << length;
  }
}

// The pattern nearly matches at every position; comparing all of it there would need quadratic time.
TEST(StringSearch, IsNotQuadraticWhereThePatternNearlyMatches) {
  const std::string pattern = std::string(1000, 'a') + "b" + std::string(1000, 'a');
  const std::string text = std::string(20'000, 'a') + pattern;
  EXPECT_EQ(text.c_str() + 20'000, VelClStringSearch(pattern.c_str(), false).getPattern(text.c_str()));
}

TEST(StringSearch, AcceptsNulTerminatedTextsAndAllBytes) {
  const std::string text = std::string(1000, 'x') + "\xFF\x80y";
  EXPECT_EQ(text.c_str() + 1000, VelClStringSearch("\xFF\x80", false).getPattern(text.c_str()));
  EXPECT_EQ(nullptr, VelClStringSearch("xxy", true).getPattern(text.c_str()));
  EXPECT_EQ(nullptr, VelClStringSearch("x", false).getPattern(nullptr));
  EXPECT_EQ(nullptr, VelClGrep(1, "x").getPattern(text.c_str()));
}

TEST(WildcardPattern, IsNotExponentialInTheNumberOfStars) {
  std::string pattern;
  for (int i = 0; i < 100; ++i) pattern += "*a";
  EXPECT_FALSE(velMatchesWildcardPattern((pattern + "*b").c_str(), std::string(10000, 'a').c_str(), false));
  EXPECT_TRUE(velMatchesWildcardPattern(pattern.c_str(), std::string(10000, 'A').c_str(), false));
}

TEST(StringMatchWildcards, ReturnsTheTextIfAllOfItMatches) {
  for (const auto& row : vel::test::readTexts(VEL_TEST_DATA "test/wildcards.tsv")) {
    const VelClStringMatchWildcards wildcards(row[0].c_str(), row[2] == "yes");
    const char* const text = row[1].c_str();
    EXPECT_EQ(wildcards.getPattern(text), row.at(3) == "yes" ? text : nullptr) << row[0] << " on " << text;
  }
  EXPECT_STREQ(VelClStringMatchWildcards(nullptr, true).getPattern(""), "");
  EXPECT_TRUE(velMatchesWildcardPattern("*", nullptr, true));
}

}  // namespace
