// Tests texts in the system's code page.
#include <clocale>

#include "platform/languages.h"
#include "platform/test/test.h"

namespace vel::platform {

namespace {

// Windows has one code page whatever the locale; characters unmappable in "C" are unmappable there, too, and
// "POSIX" is not a locale there.
TEST(AnsiTexts, AreCutBetweenCharacters) {
  for (const auto& row : test::readTexts(VEL_TEST_DATA "test/cut_texts.tsv")) {
    const test::Variable locale("LC_ALL", row[0].c_str());
    if (ansiIsUtf8() != (row[0] == "C.UTF-8")) continue;
    const bool isThere = std::setlocale(LC_CTYPE, row[0].c_str()) != nullptr;
    if (!isThere) {
      EXPECT_EQ(row[0], "POSIX");
      continue;
    }
    const std::u16string text = test::unitsOf(row[1]);
    const std::size_t capacity = std::stoul(row[2]);
    std::string out(16, '#');
    const std::size_t count = utf16ToAnsi(text.data(), text.size(), out.data(), capacity);
    EXPECT_EQ(out.substr(0, count), row.at(3));
    EXPECT_EQ(out[capacity], '#') << row[3];
  }
  std::setlocale(LC_CTYPE, "C");
}

}  // namespace

}  // namespace vel::platform
