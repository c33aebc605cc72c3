// Runs trcctl on files that only POSIX systems have.
#include <gmock/gmock.h>
#include <sys/stat.h>

#include "platform/test/child_process.h"
#include "platform/test/scratch_directory.h"

namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

TEST(TrcctlOnPosix, TellsWhatItCannotRead) {
  const vel::test::ScratchDirectory directory;
  const std::string pipe = directory.path("pipe");
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  const std::tuple<std::string, int, const char*> rows[] = {
      {"/proc/self/mem", 2, "unexpected end-of-file"},  // its first read fails
      {pipe, 1, "Could not open trace file"}};          // nobody writes to it, and nobody waits
  for (const auto& [file, exitCode, error] : rows) {
    const auto child = vel::test::runChild("trcctl", {"-key", "tour", "-file", file, "-display"});
    EXPECT_FALSE(child.endedAbnormally) << file;
    EXPECT_EQ(child.exitCode, exitCode) << file;
    EXPECT_THAT(child.errors, AllOf(HasSubstr(error), Not(HasSubstr("Number of entries"))));
  }
}

}  // namespace
