// Tests appending where the system refuses: the number of bytes written is returned, and no signal is raised.
#include <fcntl.h>

#include "platform/append.h"
#include "platform/system_error.h"
#include "platform/test/posix/processes.h"
#include "platform/test/test.h"

namespace vel::platform {

namespace {

class PosixAppend : public testing::Test {
 protected:
  /// Appends both texts and returns the number of bytes written, or -1 if the file cannot be opened.
  std::int64_t append(const std::string& name, const std::string& first, const std::string& second,
                      AppendTo target = AppendTo::AnyFile) {
    int descriptor = -1;
    error_ = openForAppending(name.c_str(), target, descriptor);
    if (error_ != 0) return -1;
    const Bytes pieces[] = {{first.data(), first.size()}, {second.data(), second.size()}};
    std::uint64_t written = 0;
    error_ = appendBytes(descriptor, pieces[0], pieces[1], written);
    closeAppended(descriptor);
    return static_cast<std::int64_t>(written);
  }

  test::ScratchDirectory directory_;
  SystemError error_ = 0;
};

TEST_F(PosixAppend, StopsAtTheLimitOfFileSizes) {
  const std::string file = directory_.write("limited", "0123");
  const auto appendPartly = [&] { return static_cast<int>(append(file, "abcd", "efgh")); };
  const auto appendNothing = [&] { return append(file, "", "x") == 0 ? error_ : -1; };
  EXPECT_EQ(test::exitCodeOf(test::limitFileSizes, appendPartly), 6);
  EXPECT_EQ(test::exitCodeOf(test::limitFileSizes, appendNothing), EFBIG);
  EXPECT_EQ(test::readFile(file), "0123abcdef");
  EXPECT_EQ(append(file, "gh", ""), 2);
}

TEST_F(PosixAppend, RefusesWithoutWaiting) {
  const std::string pipe = directory_.path("pipe");
  ASSERT_EQ(mkfifo(pipe.c_str(), S_IRWXU), 0);
  const std::tuple<std::string, std::int64_t, SystemError> rows[] = {
      {"/dev/full", 0, ENOSPC}, {pipe, -1, ENXIO}, {directory_.path("missing/file"), -1, ENOENT}};
  for (const auto& [name, written, error] : rows) {
    EXPECT_EQ(append(name, "a", "b"), written) << name;
    EXPECT_EQ(error_, error) << name;
  }
}

// A SIGPIPE that was pending before stays pending.
TEST_F(PosixAppend, BrokenPipesRaiseNoSignal) {
  int ends[2];
  ASSERT_EQ(::pipe(ends), 0);
  close(ends[0]);
  sigset_t pipeSignal, before;
  sigemptyset(&pipeSignal);
  sigaddset(&pipeSignal, SIGPIPE);
  const auto appendOne = [&] {
    std::uint64_t written = 1;
    EXPECT_EQ(appendBytes(ends[1], {"a", 1}, {nullptr, 0}, written), EPIPE);
    EXPECT_EQ(written, 0U);
  };
  appendOne();
  pthread_sigmask(SIG_BLOCK, &pipeSignal, &before);
  raise(SIGPIPE);
  appendOne();
  const timespec atOnce{};
  EXPECT_EQ(sigtimedwait(&pipeSignal, nullptr, &atOnce), SIGPIPE);
  EXPECT_EQ(sigtimedwait(&pipeSignal, nullptr, &atOnce), -1);
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
  close(ends[1]);
}

TEST_F(PosixAppend, RefusesFilesThatOtherUsersCouldHaveCreated) {
  const auto path = [this](const char* name) { return directory_.path(name); };
  for (const auto& [name, mode] : {std::pair{"kept", 0600}, {"own", 0644}, {"group", 0620}, {"all", 0602}})
    ASSERT_EQ(chmod(directory_.write(name, "old").c_str(), static_cast<mode_t>(mode)), 0);
  directory_.write("two", "old");
  directory_.write("foreign", "old");
  const bool isRoot = chown(path("foreign").c_str(), 65534, 65534) == 0;
  ASSERT_EQ(symlink("kept", path("link").c_str()), 0);
  ASSERT_EQ(symlink("made", path("nowhere").c_str()), 0);
  ASSERT_EQ(link(path("two").c_str(), path("names").c_str()), 0);
  ASSERT_EQ(mkfifo(path("pipe").c_str(), 0600), 0);
  const int reader = open(path("pipe").c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  const std::pair<const char*, SystemError> rows[] = {{"link", ELOOP},
                                                      {"nowhere", ELOOP},
                                                      {"names", EPERM},
                                                      {"pipe", EPERM},
                                                      {"group", EPERM},
                                                      {"all", EPERM},
                                                      {"foreign", isRoot ? EPERM : 0},
                                                      {"own", 0},
                                                      {"new", 0}};
  for (const auto& [name, refusal] : rows) {
    EXPECT_EQ(append(path(name), "a", "b", AppendTo::OwnFile), refusal == 0 ? 2 : -1) << name;
    EXPECT_EQ(error_, refusal) << name;
    EXPECT_EQ(append(path(name), "a", "b"), 2) << name << ": as any file";
  }
  close(reader);
  EXPECT_EQ(test::readFile(path("kept")), "oldab") << "appended to as any file only";
  EXPECT_EQ(test::modeOf(path("new")), mode_t{0600});
}

}  // namespace

}  // namespace vel::platform
