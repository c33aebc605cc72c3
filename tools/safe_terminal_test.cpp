// Output of tools to a terminal.
#include "tools/safe_terminal.h"

#include "platform/test/test.h"

namespace {

TEST(SafeTerminal, ReplacesControlCharacters) {
  const std::string zero(1, '\0');
  const std::pair<std::string, std::string> rows[] = {
      {"plain \xC3\xBC\xE2\x82\xAC \a\t\r\n", "plain \xC3\xBC\xE2\x82\xAC \a\t\r\n"},
      {"\x1B]0;title\x07", "?]0;title\a"},
      {"a" + zero + "\b\v\f\x0E\x1F\x20\x7E\x7F", "a??????\x20\x7E?"},
      {"\xC2\x9B"
       "31m \xC2\x80\xC2\x9F\xC2\xA0",
       "\xC2?31m \xC2?\xC2?\xC2\xA0"},
      // The same bytes within characters of UTF-8 or of other code pages.
      {"\xC4\x9B\x84\x9B", "\xC4\x9B\x84\x9B"},
      {std::string(511, 'x') + "\xC2\x9B" + std::string(600, '\x1B'),
       std::string(511, 'x') + "\xC2?" + std::string(600, '?')},
  };
  for (const auto& [text, shown] : rows) {
    std::ostringstream whole, single;
    vel::tools::SafeBuffer wholeBuffer(whole.rdbuf()), singleBuffer(single.rdbuf());
    std::ostream(&wholeBuffer) << text;
    for (const char c : text) std::ostream(&singleBuffer).put(c).flush();
    EXPECT_EQ(whole.str(), shown);
    EXPECT_EQ(single.str(), shown);
  }
}

TEST(SafeTerminal, ReportsAFailedWrite) {
  struct : std::streambuf {
    std::streamsize xsputn(const char*, std::streamsize size) override {
      return std::min<std::streamsize>(size, 5);
    }
  } full;
  vel::tools::SafeBuffer buffer(&full);
  std::ostream stream(&buffer);
  EXPECT_FALSE(stream << "longer");
  stream.clear();
  EXPECT_FALSE(stream.put('x'));
}

}  // namespace
