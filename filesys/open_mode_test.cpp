// The translation mode of descriptors. Binary output is seen in tmp_filename_test.cpp.
#include <gtest/gtest.h>

#include "vel_include/vel_filesys.h"

namespace {

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
  for (const int notOpen : {-1, 4711, 1 << 30}) {
    EXPECT_TRUE(velFileIsOpenedInTextMode(notOpen) && !velFileIsOpenedInBinaryMode(notOpen)) << notOpen;
    EXPECT_FALSE(velFileSetBinaryMode(notOpen, true)) << notOpen;
  }
}

}  // namespace
