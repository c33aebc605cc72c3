// Appending where the system refuses: what was written is told, and no signal ends the process.
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "platform/platform.h"
#include "platform/test/scratch_directory.h"

namespace vel::platform {

namespace {

class PosixAppend : public testing::Test {
 protected:
  /// Appends both texts; -1 when the file cannot be opened.
  std::int64_t append(const std::string& name, const std::string& first, const std::string& second) {
    const int descriptor = openForAppending(name.c_str(), error_);
    if (descriptor == -1) return -1;
    const Bytes pieces[] = {{first.data(), first.size()}, {second.data(), second.size()}};
    const auto written = static_cast<std::int64_t>(appendBytes(descriptor, pieces[0], pieces[1], error_));
    closeAppended(descriptor);
    return written;
  }

  test::ScratchDirectory directory_;
  SystemError error_ = 0;
};

TEST_F(PosixAppend, StopsAtTheLimitOfFileSizes) {
  const std::string file = directory_.write("limited", "0123");
  rlimit before{};
  getrlimit(RLIMIT_FSIZE, &before);
  const rlimit ten{10, before.rlim_max};
  setrlimit(RLIMIT_FSIZE, &ten);
  const std::int64_t partly = append(file, "abcd", "efgh");
  const SystemError partlyError = error_;
  const std::int64_t nothing = append(file, "", "x");
  setrlimit(RLIMIT_FSIZE, &before);
  EXPECT_EQ(partly, 6);
  EXPECT_EQ(partlyError, EFBIG);
  EXPECT_EQ(nothing, 0);
  EXPECT_EQ(test::readFile(file), "0123abcdef");
  EXPECT_EQ(append(file, "gh", ""), 2);
}

TEST_F(PosixAppend, RefusesWithoutWaiting) {
  EXPECT_EQ(append("/dev/full", "a", "b"), 0);
  EXPECT_EQ(error_, ENOSPC);
  const std::string pipe = directory_.path("pipe");
  ASSERT_EQ(mkfifo(pipe.c_str(), S_IRWXU), 0);
  EXPECT_EQ(append(pipe, "a", "b"), -1);
  EXPECT_EQ(error_, ENXIO);
  int ends[2];
  ASSERT_EQ(::pipe(ends), 0);
  close(ends[0]);
  EXPECT_EQ(appendBytes(ends[1], {"a", 1}, {nullptr, 0}, error_), 0U);
  close(ends[1]);
  EXPECT_EQ(error_, EPIPE);
  EXPECT_EQ(append(directory_.path("missing/file"), "a", "b"), -1);
  EXPECT_EQ(error_, ENOENT);
}

}  // namespace

}  // namespace vel::platform
