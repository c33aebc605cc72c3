// Appending where the system refuses: what was written is told, and no signal ends the process.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
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
  std::int64_t append(const std::string& name, const std::string& first, const std::string& second,
                      AppendTo target = AppendTo::AnyFile) {
    const int descriptor = openForAppending(name.c_str(), target, error_);
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
  // A signal that waited before is not taken for this failure's.
  sigset_t pipeSignal, before, pending;
  sigemptyset(&pipeSignal);
  sigaddset(&pipeSignal, SIGPIPE);
  pthread_sigmask(SIG_BLOCK, &pipeSignal, &before);
  raise(SIGPIPE);
  ASSERT_EQ(::pipe(ends), 0);
  close(ends[0]);
  EXPECT_EQ(appendBytes(ends[1], {"a", 1}, {nullptr, 0}, error_), 0U);
  close(ends[1]);
  const timespec atOnce{};
  EXPECT_EQ(sigpending(&pending) | sigismember(&pending, SIGPIPE), 1);
  EXPECT_EQ(sigtimedwait(&pipeSignal, nullptr, &atOnce), SIGPIPE);
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
  EXPECT_EQ(append(directory_.path("missing/file"), "a", "b"), -1);
  EXPECT_EQ(error_, ENOENT);
}

TEST_F(PosixAppend, RefusesWhatOthersCanHavePlanted) {
  const auto own = [this](const char* name, mode_t mode) {
    const std::string file = directory_.write(name, "old");
    EXPECT_EQ(chmod(file.c_str(), mode), 0);
    return file;
  };
  const std::string kept = own("kept", 0600);
  ASSERT_EQ(symlink("kept", directory_.path("link").c_str()), 0);
  ASSERT_EQ(symlink("made", directory_.path("nowhere").c_str()), 0);
  ASSERT_EQ(link(own("two", 0600).c_str(), directory_.path("names").c_str()), 0);
  ASSERT_EQ(mkfifo(directory_.path("pipe").c_str(), 0600), 0);
  const int reader = open(directory_.path("pipe").c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  own("group", 0620);
  own("all", 0602);
  own("foreign", 0644);
  const bool isRoot = chown(directory_.path("foreign").c_str(), 65534, 65534) == 0;
  struct Row {
    const char* name;
    SystemError refusal;
  };
  const Row rows[] = {{"link", ELOOP},
                      {"nowhere", ELOOP},
                      {"names", EPERM},
                      {"pipe", EPERM},
                      {"group", EPERM},
                      {"all", EPERM},
                      {"foreign", isRoot ? EPERM : 0}};
  for (const auto& [name, refusal] : rows) {
    const std::string file = directory_.path(name);
    EXPECT_EQ(append(file, "a", "b", AppendTo::OwnFile), refusal == 0 ? 2 : -1) << name;
    EXPECT_EQ(error_, refusal) << name;
    EXPECT_EQ(append(file, "a", "b"), 2) << name << ": any file will do";
  }
  close(reader);
  EXPECT_EQ(test::readFile(kept), "oldab") << "only when any file will do";
  EXPECT_EQ(append(own("read", 0644), "a", "b", AppendTo::OwnFile), 2);
  EXPECT_EQ(append(directory_.path("new"), "a", "b", AppendTo::OwnFile), 2);
  struct stat status {};
  EXPECT_EQ(stat(directory_.path("new").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0600U);
}

}  // namespace

}  // namespace vel::platform
