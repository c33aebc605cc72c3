// The translation mode of descriptors, seen in the bytes that arrive.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "platform/test/child_process.h"
#include "vel_include/vel_filesys.h"

namespace {

// Run in a child, whose standard output is a file.
TEST(OpenMode, DISABLED_PrintsALineInBinaryMode) {
  ASSERT_TRUE(velFileSetBinaryMode(1, true));
  EXPECT_TRUE(velFileIsOpenedInBinaryMode(1) && !velFileIsOpenedInTextMode(1));
  std::printf("<line>\n");
}

TEST(OpenMode, BinaryKeepsLineBreaksAsTheyAre) {
  vel::test::ChildOptions options;
  options.rawOutput = true;
  const auto child =
      vel::test::runChild(vel::test::ownProgram(),
                          {"--gtest_also_run_disabled_tests", "--gtest_filter=OpenMode.DISABLED_*"}, options);
  EXPECT_EQ(0, child.exitCode);
  EXPECT_NE(std::string::npos, child.output.find("<line>\n"));
}

TEST(OpenMode, AsksWithoutLeavingAnotherMode) {
  for (const bool binary : {false, true}) {
    ASSERT_TRUE(velFileSetBinaryMode(0, binary));
    const bool isBinary = velFileIsOpenedInBinaryMode(0);
    EXPECT_TRUE(isBinary || !binary);
    EXPECT_NE(isBinary, velFileIsOpenedInTextMode(0));
    EXPECT_EQ(isBinary, velFileIsOpenedInBinaryMode(0));
  }
}

TEST(OpenMode, ClosedDescriptorsCountAsText) {
  constexpr int notOpen = 4711;
  EXPECT_TRUE(velFileIsOpenedInTextMode(notOpen) && !velFileIsOpenedInBinaryMode(notOpen));
  EXPECT_FALSE(velFileSetBinaryMode(notOpen, true));
}

}  // namespace
