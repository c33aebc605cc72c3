// Tests what Windows demands of paths: Unicode, its own case rule, and directories of drives.
#include "platform/test/test.h"
#include "vel_include/vel_path.h"

namespace vel::platform {

namespace {

TEST(WindowsPaths, AreUnicode) {
  for (const auto& [text, position] : {std::pair{"a\xFF", 2U}, {"\xC3", 1U}, {"x\xED\xA0\x80", 2U}}) {
    VelClPath path(text);
    VelClFilename name;
    std::filesystem::path standard;
    for (const VelClStatus& status :
         {path.check(), path.makeAbsolute(), path.toFilename(name), path.toStd(standard)}) {
      EXPECT_EQ(status.getErrorId(), static_cast<unsigned long>(PATH_INVALID));
      EXPECT_EQ(status.getPosition(), position);
    }
  }
  VelClPath path;
  const wchar_t unpaired[] = {L'a', 0xD800, L'\0'};
  EXPECT_EQ(VelClPath::fromStd(unpaired, path).getErrorId(), static_cast<unsigned long>(PATH_INVALID));
}

// The encoding of the test's process has letters of few scripts.
TEST(WindowsPaths, AreNeverAnotherFilesName) {
  VelClFilename name("old");
  for (const char* text : {"\xE6\x97\xA5\xF0\x9F\x98\x80", "\xC4\x80\xE2\x85\xA0"}) {
    EXPECT_EQ(VelClPath(text).toFilename(name).getErrorId(), static_cast<unsigned long>(PATH_INVALID));
    EXPECT_STREQ(name.getAsCString(), "old");
  }
}

TEST(WindowsPaths, IgnoreCaseAsTheSystemDoes) {
  const auto compared = [](const std::string& a, const std::string& b) {
    return VelClPath(a).compareAsSystem(b);
  };
  EXPECT_EQ(compared("\xC3\xA4\xD0\xB6", "\xC3\x84\xD0\x96"), 0);
  // Neither of these pairs is a letter and its only upper-case letter.
  EXPECT_NE(compared("stra\xC3\x9F"
                     "e",
                     "STRASSE"),
            0);
  EXPECT_NE(compared("\xC4\xB1", "I"), 0);
  EXPECT_NE(compared("a\xFF", "a\xFE"), 0);
  EXPECT_EQ(compared("a\xFF", "A\xFF"), 0);
  // Blocks of characters, of which one ends within a pair of surrogates.
  const std::string pairs(255, 'x'), face = "\xF0\x9F\x98\x80";
  EXPECT_EQ(compared(pairs + face + "a", pairs + face + "A"), 0);
  EXPECT_LT(compared(pairs + face, pairs + face + "a"), 0);
  EXPECT_GT(compared(pairs + "b" + face, pairs + "A" + face), 0);
}

TEST(WindowsPaths, StartFromTheDirectoryOfTheirDrive) {
  const auto absolute = [](const char* text) {
    VelClPath path(text);
    const VelClStatus status = path.makeAbsolute();
    return status.isOk() ? std::string(path.getText()) : status.getText();
  };
  // A drive without a directory of its own starts at its root.
  EXPECT_EQ(absolute("Q:x"), "Q:\\x");
  VelClPath slash("x", PATH_SYNTAX_SLASH);
  EXPECT_EQ(slash.makeAbsolute().getErrorId(), static_cast<unsigned long>(PATH_INVALID));
}

}  // namespace

}  // namespace vel::platform
