// Tests that names are bytes where POSIX has no other demand.
#include "platform/test/test.h"
#include "vel_include/vel_path.h"

namespace vel::platform {

namespace {

TEST(PosixPaths, AreBytes) {
  const std::string text = "a\xFF\\\x01\xC3/C:";
  VelClPath path(text), back;
  std::filesystem::path standard;
  EXPECT_TRUE(path.check().isOk());
  ASSERT_TRUE(path.toStd(standard).isOk());
  EXPECT_EQ(standard.native(), text);
  ASSERT_TRUE(VelClPath::fromStd(standard, back).isOk());
  EXPECT_EQ(back.getText(), text);
  ASSERT_TRUE(path.makeAbsolute().isOk());
  EXPECT_TRUE(path.getText().ends_with("/" + text));
  EXPECT_NE(VelClPath("a").compareAsSystem("A"), 0);
}

TEST(PosixPaths, HaveNoBackslashStyleBelowADirectoryWithABackslash) {
  const test::ScratchDirectory scratch;
  const auto before = std::filesystem::current_path();
  std::filesystem::create_directory(scratch.path("a\\b"));
  std::filesystem::current_path(scratch.path("a\\b"));
  VelClPath backslash("x", PATH_SYNTAX_BACKSLASH), path("x");
  EXPECT_EQ(backslash.makeAbsolute().getErrorId(), static_cast<unsigned long>(PATH_INVALID));
  EXPECT_EQ(backslash.getText(), "x");
  EXPECT_TRUE(path.makeAbsolute().isOk());
  EXPECT_TRUE(path.getText().ends_with("/a\\b/x"));
  std::filesystem::current_path(before);
}

}  // namespace

}  // namespace vel::platform
