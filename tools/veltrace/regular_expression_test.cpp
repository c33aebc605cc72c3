// Matches regular expressions, and refuses invalid ones with the place.
#include "tools/veltrace/regular_expression.h"

#include "platform/test/test.h"

namespace {

using vel::veltrace::RegularExpression;

TEST(RegularExpression, MatchesAnywhereInTheText) {
  const struct {
    std::string_view expression, text;
    bool matches;
  } rows[] = {
      {"", "", true},
      {"b", "abc", true},
      {"^b", "abc", false},
      {"^a", "abc", true},
      {"c$", "abc", true},
      {"b$", "abc", false},
      {"^$", "", true},
      {"^$", "a", false},
      {"a.c", "abc", true},
      {"a.c", "ac", false},
      {"ab*c", "ac", true},
      {"ab*c", "abbbc", true},
      {"ab+c", "ac", false},
      {"ab?c", "abbc", false},
      {"^(ab|c)+$", "abcab", true},
      {"^(ab|c)+$", "aba", false},
      {"a|", "x", true},
      {"(a|b|)c", "c", true},
      {"[a-c]x", "bx", true},
      {"[^a-c]x", "bx", false},
      {"[]]", "]", true},
      {"[a-]", "-", true},
      {"[\\d_]+$", "a_1", true},
      {"\\w\\s\\d", "a 1", true},
      {"\\x41\\.", "A.", true},
      {"\\.", "a", false},
      {"(a*)*b", "aaac", false},
      {"(()*)*", "", true},
      {"x**", "", true},
      {"\\n", "a\nb", true},
      {"^.$", "\xFF", true},
      {"(^a|b$)", "cb", true},
  };
  for (const auto& row : rows) {
    RegularExpression expression;
    std::size_t position = 0;
    ASSERT_TRUE(expression.parse(row.expression, position)) << row.expression;
    EXPECT_EQ(expression.isIn(row.text), row.matches) << row.expression << " in " << row.text;
  }
}

TEST(RegularExpression, NamesThePlaceOfAMistake) {
  const std::pair<std::string, std::size_t> rows[] = {
      {"(a", 1},  {"a)", 2},   {"*", 1},     {"a|+", 3},     {"[a", 1},   {"a\\", 2},
      {"\\q", 1}, {"\\x4", 1}, {"[b-a]", 2}, {"[\\d-z]", 2}, {"((a)", 1}, {std::string(300, '('), 102},
  };
  for (const auto& [text, place] : rows) {
    RegularExpression expression;
    std::size_t position = 0;
    EXPECT_FALSE(expression.parse(text, position)) << text;
    EXPECT_EQ(position, place) << text;
  }
}

// Takes exponential time where all ways are tried one after another.
TEST(RegularExpression, NeedsNoLongerForHardExpressions) {
  RegularExpression expression;
  std::size_t position = 0;
  ASSERT_TRUE(expression.parse("(a*)*(a|aa)*(a?a?a?)*b$", position));
  EXPECT_FALSE(expression.isIn(std::string(300, 'a')));
}

}  // namespace
