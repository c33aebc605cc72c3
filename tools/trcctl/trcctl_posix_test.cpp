// Runs trcctl on files that only POSIX systems have.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "platform/test/child_process.h"
#include "platform/test/scratch_directory.h"

namespace {

vel::test::ChildResult display(const std::string& file) {
  return vel::test::runChild("trcctl", {"-key", "tour", "-file", file, "-display"});
}

/// Whose first read fails.
TEST(TrcctlOnPosix, TellsAFailureToRead) {
  const vel::test::ChildResult child = display("/proc/self/mem");
  EXPECT_EQ(child.exitCode, 2);
  EXPECT_NE(child.errors.find("unexpected end-of-file"), std::string::npos) << child.errors;
  EXPECT_EQ(child.errors.find("Number of entries"), std::string::npos) << child.errors;
}

}  // namespace
