// Code pages of locales, and conversion to them.
#include <gtest/gtest.h>

#include "platform/platform.h"
#include "platform/test/table.h"
#include "platform/test/variable.h"

namespace {

TEST(CodePages, ComeFromTheEnvironment) {
  for (const auto& row : vel::test::readTable(VEL_TEST_DATA "test/posix/locale_code_pages.tsv")) {
    const vel::test::Variable locale("LC_ALL", row[0].c_str());
    EXPECT_EQ(vel::platform::ansiCodePage(), std::stoul(row.at(1))) << row[0];
    EXPECT_EQ(vel::platform::oemCodePage(), std::stoul(row[1])) << row[0];
  }
}

TEST(CodePages, TakeTexts) {
  const struct {
    std::uint32_t ccsid;
    std::u16string text;
    std::string expected;
  } rows[] = {
      {923, u"\u20AC\u00E4a", "\xA4\xE4\x61"},
      {5348, u"\u20AC", "\x80"},
      {367, u"a\u00E4\u20ACb", "a??b"},
      {943, u"\u3042\uFF71", "\x82\xA0\xB1"},
      {1208, u"\u00E4\xD83D\xDE00", "\xC3\xA4\xF0\x9F\x98\x80"},
      // A character of two units is one that lacks; half of one, too.
      {923, u"\xD83D\xDE00x", "?x"},
      {923, u"\xDE00\xD83D", "?\?"},
      {4, u"a", ""},
      {923, u"", ""},
  };
  for (const auto& row : rows) {
    const std::string& expected = row.expected;
    for (std::size_t room = 0; room <= expected.size() + 1; ++room) {
      std::string out(expected.size() + 2, 'Z');
      const std::size_t size =
          vel::platform::utf16ToCodePage(row.ccsid, row.text.data(), row.text.size(), out.data(), room);
      EXPECT_EQ(size, room < expected.size() ? 0 : expected.size()) << row.ccsid << " " << room;
      EXPECT_EQ(out.substr(room), std::string(out.size() - room, 'Z'));
      EXPECT_EQ(out.substr(0, size), expected.substr(0, size));
    }
  }
}

}  // namespace
