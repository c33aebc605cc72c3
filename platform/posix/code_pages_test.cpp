// Code pages of locales, and conversion to them.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "platform/platform.h"

namespace {

TEST(CodePages, ComeFromTheEnvironment) {
  const struct {
    const char* locale;
    std::uint32_t ccsid;
  } rows[] = {
      {"C", 367},          {"de_DE.UTF-8", 1208}, {"de_DE.utf8@euro", 1208}, {"de_DE.ISO-8859-15", 923},
      {"de_DE@euro", 367}, {"ru_RU.KOI8-R", 878}, {"ja_JP.eucJP", 0},        {"ja_JP.EUC-JP", 33722},
  };
  const char* const before = std::getenv("LC_ALL");
  const std::string saved = before != nullptr ? before : "";
  for (const auto& row : rows) {
    setenv("LC_ALL", row.locale, 1);
    EXPECT_EQ(vel::platform::ansiCodePage(), row.ccsid) << row.locale;
    EXPECT_EQ(vel::platform::oemCodePage(), row.ccsid) << row.locale;
  }
  before != nullptr ? setenv("LC_ALL", saved.c_str(), 1) : unsetenv("LC_ALL");
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
      if (size != 0) {
        EXPECT_EQ(out.substr(0, size), expected);
      }
    }
  }
}

}  // namespace
