// Output of tools to a terminal.
#include "tools/safe_terminal.h"

#include "platform/test/test.h"

namespace {

TEST(SafeTerminal, ReplacesControlCharacters) {
  auto rows = vel::test::readTexts(VEL_TEST_DATA "test/terminal_texts.tsv");
  rows.push_back({std::string(511, 'x') + "\xC2\x9B" + std::string(600, '\x1B'),
                  std::string(511, 'x') + "\xC2?" + std::string(600, '?')});
  for (const auto& row : rows) {
    const std::string &text = row[0], &shown = row.at(1);
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
