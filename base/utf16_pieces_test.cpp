// Tests the conversion of texts that arrive in pieces.
#include "base/utf16_pieces.h"

#include "platform/test/test.h"

namespace vel {

namespace {

/// Converts the text in pieces of `step` bytes.
std::u16string converted(std::string_view text, std::size_t step) {
  Utf16Pieces pieces;
  std::u16string result;
  for (; !text.empty(); text.remove_prefix(std::min(step, text.size())))
    EXPECT_TRUE(pieces.append(text.substr(0, step), [&result](const char16_t* units, std::size_t count) {
      EXPECT_LE(count, Utf16Pieces::kMaxUnits);
      EXPECT_FALSE(isHighSurrogate(units[count - 1])) << "half a character";
      result.append(units, count);
      return true;
    }));
  return result;
}

TEST(Utf16Pieces, AreTheSameHoweverTheTextIsCut) {
  const std::pair<std::string, std::u16string> rows[] = {
      {"Jürgen пример 日本 😀\r\n", u"Jürgen пример 日本 😀\r\n"},
      // Ill-formed: alone, within a text, overlong, a surrogate, beyond the last character, and cut.
      {"\x80"
       "a",
       u"\uFFFDa"},
      {"\xF0\x9F\x98z\xC3\xC3\xA9", u"\uFFFDz\uFFFD\u00E9"},
      {"\xC0\xAF\xED\xA0\x80.", u"\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD."},
      {"\xF4\x90\x80\x80.", u"\uFFFD\uFFFD\uFFFD\uFFFD."},
      {"\xE6\x97\xE6\x97\xA5", u"\uFFFD日"},
      {"a\xE6\x97", u"a"},
  };
  for (const auto& [text, units] : rows)
    for (std::size_t step = 1; step <= text.size(); ++step) EXPECT_EQ(converted(text, step), units) << step;
  std::string longText(Utf16Pieces::kMaxUnits - 1, 'x');
  std::u16string longUnits(longText.begin(), longText.end());
  for (int i = 0; i < 1000; ++i) {
    longText += "😀";
    longUnits += u"😀";
  }
  for (const std::size_t step : {std::size_t{7}, longText.size()})
    EXPECT_TRUE(converted(longText, step) == longUnits);
}

TEST(Utf16Pieces, StopAtAFailedWrite) {
  Utf16Pieces pieces;
  int calls = 0;
  EXPECT_FALSE(pieces.append(std::string(5000, 'x'), [&calls](const char16_t*, std::size_t) {
    ++calls;
    return false;
  }));
  EXPECT_EQ(calls, 1);
}

}  // namespace

}  // namespace vel
