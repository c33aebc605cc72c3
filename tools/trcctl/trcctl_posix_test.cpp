// Runs trcctl on files that only POSIX systems have.
#include <gmock/gmock.h>
#include <sys/stat.h>

#include <string>

#include "platform/test/child_process.h"
#include "platform/test/scratch_directory.h"

namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

vel::test::ChildResult display(const std::string& file) {
  return vel::test::runChild("trcctl", {"-key", "tour", "-file", file, "-display"});
}

/// Whose first read fails.
TEST(TrcctlOnPosix, TellsAFailureToRead) {
  const vel::test::ChildResult child = display("/proc/self/mem");
  EXPECT_EQ(child.exitCode, 2);
  EXPECT_THAT(child.errors, AllOf(HasSubstr("unexpected end-of-file"), Not(HasSubstr("Number of entries"))));
}

TEST(TrcctlOnPosix, WaitsForNoPipeThatNobodyWrites) {
  const vel::test::ScratchDirectory directory;
  const std::string pipe = directory.path("pipe");
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  const vel::test::ChildResult child = display(pipe);
  EXPECT_FALSE(child.endedAbnormally);
  EXPECT_EQ(child.exitCode, 1);
  EXPECT_THAT(child.errors, HasSubstr("Could not open trace file"));
}

}  // namespace
