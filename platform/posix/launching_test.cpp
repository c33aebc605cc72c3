// Tests what children inherit from this process, and that they leave it unchanged.
#include <fcntl.h>
#include <pthread.h>

#include <climits>
#include <future>

#include "platform/launching.h"
#include "platform/posix/inheritance.h"
#include "platform/processes.h"
#include "platform/test/posix/processes.h"
#include "platform/test/test.h"

namespace vel::platform {

namespace {

namespace fs = std::filesystem;
using Texts = std::vector<std::string>;

/// Returns 0 or the error code of the system.
int launch(decltype(launchAndWait) way, Texts texts, std::uint32_t& result) {
  return static_cast<int>(way({nullptr, test::pointersTo(texts).data(), false}, result));
}

/// Returns the exit code, or the negated error code of a failed launch.
int run(const Texts& texts) {
  std::uint32_t exitCode = 0;
  const int error = launch(launchAndWait, texts, exitCode);
  return error != 0 ? -error : static_cast<int>(exitCode);
}

int runShell(const std::string& script) {
  return run({"/bin/sh", "-c", script});
}

bool hasNoChildren() {
  return waitpid(-1, nullptr, WNOHANG) == -1 && errno == ECHILD;
}

void reapEverything(int) {
  const int error = errno;
  while (waitpid(-1, nullptr, WNOHANG) > 0) {
  }
  errno = error;
}

TEST(PosixLaunching, FailuresReturnTheErrorCodeOfTheSystem) {
  const test::ScratchDirectory scratch;
  const std::string text = scratch.write("text", "no program"),
                    script = scratch.write("script", "#!/nowhere\n");
  EXPECT_EQ(run({text}), -EACCES);
  for (const std::string& runnable : {text, script}) chmod(runnable.c_str(), 0700);
  EXPECT_EQ(run({text}), -ENOEXEC);
  // The system accepts PATH_MAX bytes with the NUL.
  const std::string program = "/bin/true",
                    longest = std::string(PATH_MAX - 1 - program.size(), '/') + program;
  EXPECT_EQ(run({longest}), 0);
  for (const std::string& missing : {scratch.path("absent/program"), scratch.path(), script, "/" + longest})
    EXPECT_EQ(run({missing}), -ENOENT);
  std::uint32_t id = 0;
  EXPECT_EQ(launch(launchDetached, {text}, id), ENOEXEC);
  EXPECT_TRUE(hasNoChildren());
}

TEST(PosixLaunching, OnlyStandardStreamsAreInherited) {
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  std::vector<int> open(ends, ends + 2);
  for (const int number : {3, 4, 10, 100})
    if (fcntl(number, F_GETFD) == -1) open.push_back(dup2(ends[0], number));
  // Lists the open descriptors from 3 on, except that of the directory being read.
  const std::string list = "cd /proc/$$/fd; for f in *; do [ $f -lt 3 ] || [ ! -e $f ] || echo $f; done";
  testing::internal::CaptureStdout();
  EXPECT_EQ(runShell(list), 0);
  EXPECT_EQ(runShell("exec 9</dev/null; " + list), 0);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "9\n");
  // The listing itself uses the first free descriptor.
  for (const bool isInputOpen : {true, false}) {
    const auto closesAll = [&] {
      if (!isInputOpen) close(STDIN_FILENO);
      closeListedDescriptors(4);
      const auto isOpen = [](int number) { return fcntl(number, F_GETFD) != -1; };
      const auto stays = [&](int number) { return number >= 4 && isOpen(number); };
      return isOpen(STDERR_FILENO) && isOpen(STDIN_FILENO) == isInputOpen &&
             std::ranges::none_of(open, stays);
    };
    EXPECT_EQ(test::statusOfCopy(closesAll), 0) << isInputOpen;
  }
  for (const int number : open) close(number);
}

int failedLaunches() {
  int failures = 0;
  std::uint32_t id = 0;
  for (int times = 0; times < 20; ++times) {
    failures += runShell("exit 5") == 5 ? 0 : 1;
    failures += launch(launchDetached, {"/bin/sh", "-c", "exit 0"}, id) == 0 ? 0 : 1;
  }
  return failures;
}

/// Starts a copy of this process that ends when the last writer of the pipe closes it.
pid_t waitingCopy(const int (&ends)[2]) {
  const pid_t child = fork();
  if (child != 0) return child;
  char byte = 0;
  close(ends[1]);
  while (read(ends[0], &byte, 1) < 0) {
  }
  _exit(0);
}

// Children of other threads hold copies of all descriptors that were open when they were forked.
TEST(PosixLaunching, DoesNotWaitForTheChildrenOfOtherThreads) {
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  auto failures = std::async(std::launch::async, failedLaunches);
  const auto isDoneIn = [&failures](int milliseconds) {
    return failures.wait_for(std::chrono::milliseconds(milliseconds)) == std::future_status::ready;
  };
  std::vector<pid_t> copies;
  while (copies.size() < 300 && !isDoneIn(0)) copies.push_back(waitingCopy(ends));
  EXPECT_TRUE(isDoneIn(test::kTimeLimitMs));
  close(ends[1]);
  for (const pid_t child : copies) waitpid(child, nullptr, 0);
  close(ends[0]);
  EXPECT_EQ(failures.get(), 0);
}

TEST(PosixLaunching, WorksWithoutStandardStreams) {
  const test::ScratchDirectory scratch;
  const std::string report = scratch.path("report");
  const std::string script = "cd /proc/$$/fd; echo $(readlink 0 1 2) > " + report;
  // Descriptors that the launch opens then have the numbers 0 to 2.
  const auto launchAll = [&script] {
    for (const int stream : {0, 1, 2}) close(stream);
    std::uint32_t id = 0;
    return runShell("exit 3") == 3 && run({"/nowhere/program"}) == -ENOENT &&
           launch(launchDetached, {"/bin/sh", "-c", script}, id) == 0 && id != 0;
  };
  EXPECT_EQ(test::statusOfCopy(launchAll), 0);
  EXPECT_TRUE(test::waitUntil([&report] {
    return test::readFile(report) == "/dev/null /dev/null /dev/null\n";
  })) << test::readFile(report);
}

TEST(PosixThreads, ForkedChildrenAreOtherThreads) {
  const std::uint32_t parent = currentThreadId();
  EXPECT_EQ(test::statusOfCopy([] { return currentThreadId() == static_cast<std::uint32_t>(getpid()); }), 0);
  EXPECT_EQ(currentThreadId(), parent);
}

TEST(PosixLaunching, SignalMaskIsInheritedAndSignalsBecomeExitCodes) {
  sigset_t blocked, before, after;
  sigemptyset(&blocked);
  sigaddset(&blocked, SIGUSR1);
  pthread_sigmask(SIG_SETMASK, &blocked, &before);
  signal(SIGUSR2, reapEverything);
  // USR1 is blocked, so the child lives on; USR2 has its default action there, which ends the child.
  EXPECT_EQ(runShell("kill -USR1 $$; exit 5"), 5);
  EXPECT_EQ(runShell("kill -USR2 $$; exit 5"), 128 + SIGUSR2);
  EXPECT_EQ(runShell("kill -KILL $$"), 128 + SIGKILL);
  signal(SIGUSR2, SIG_IGN);
  EXPECT_EQ(runShell("kill -USR2 $$; exit 5"), 5) << "ignored signals stay ignored";
  signal(SIGUSR2, SIG_DFL);
  pthread_sigmask(SIG_SETMASK, &before, &after);
  for (int number = 1; number < 32; ++number)
    EXPECT_EQ(sigismember(&after, number), number == SIGUSR1 ? 1 : 0) << number;
}

TEST(PosixLaunching, ExitCodesDoNotDependOnTheActionForSigchld) {
  for (const auto& [handler, flags] :
       {std::pair{SIG_IGN, 0}, {SIG_DFL, SA_NOCLDWAIT}, {&reapEverything, 0}}) {
    struct sigaction action {
    }, before{}, after{};
    action.sa_handler = handler;
    action.sa_flags = flags;
    sigaction(SIGCHLD, &action, &before);
    for (int times = 0; times < 20; ++times) EXPECT_EQ(runShell("exit 5"), 5);
    if (handler == SIG_IGN) {
      // The launch that ends first must not restore the action while others are running.
      std::vector<std::future<int>> codes;
      for (const char* script : {"sleep 0.02; exit 3", "sleep 0.1; exit 3", "sleep 0.2; exit 3"})
        codes.push_back(std::async(std::launch::async, runShell, script));
      for (std::future<int>& code : codes) EXPECT_EQ(code.get(), 3);
    }
    sigaction(SIGCHLD, &before, &after);
    EXPECT_EQ(after.sa_handler, handler);
  }
  EXPECT_TRUE(hasNoChildren());
}

TEST(PosixLaunching, ACancelledThreadCompletesItsLaunch) {
  int code = 0;
  pthread_t thread{};
  const auto cancelled = [](void* codeOfThread) -> void* {
    pthread_cancel(pthread_self());
    *static_cast<int*>(codeOfThread) = runShell("exit 5");
    pthread_testcancel();
    return nullptr;
  };
  ASSERT_EQ(pthread_create(&thread, nullptr, cancelled, &code), 0);
  void* result = nullptr;
  EXPECT_EQ(pthread_join(thread, &result), 0);
  EXPECT_EQ(result, PTHREAD_CANCELED);
  EXPECT_EQ(code, 5);
}

TEST(PosixLaunching, DetachedProgramsShareNeitherSessionNorDescriptors) {
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  std::uint32_t id = 0;
  ASSERT_EQ(launch(launchDetached, {"/bin/sleep", "1200"}, id), 0);
  const auto process = static_cast<pid_t>(id);
  EXPECT_TRUE(hasNoChildren());
  EXPECT_NE(getsid(process), getsid(0));
  EXPECT_NE(getpgid(process), getpgid(0));
  const std::string entry = "/proc/" + std::to_string(id);
  for (const char* stream : {"/fd/0", "/fd/1", "/fd/2"})
    EXPECT_EQ(fs::read_symlink(entry + stream), "/dev/null");
  // Its start opens and closes descriptors meanwhile.
  std::error_code gone;
  for (const auto& open : fs::directory_iterator(entry + "/fd"))
    EXPECT_FALSE(fs::read_symlink(open, gone).string().starts_with("pipe")) << open;
  EXPECT_EQ(fs::read_symlink(entry + "/cwd"), fs::current_path());
  EXPECT_EQ(endProcess(id), EndResult::Ended);
  EXPECT_TRUE(test::endsWithin(id, test::kTimeLimitMs));
  EXPECT_TRUE(hasNoChildren());
  for (const int end : ends) close(end);
}

TEST(PosixLaunching, OnlySingleProcessesAreEnded) {
  const pid_t child = fork();
  if (child == 0) {
    setpgid(0, 0);
    for (;;) pause();
  }
  setpgid(child, child);
  const auto id = static_cast<std::uint32_t>(child);
  for (const std::uint32_t none : {0U, 0U - id, 0x80000000U})
    EXPECT_EQ(endProcess(none), EndResult::CannotOpen);
  EXPECT_FALSE(test::endsWithin(id, 0));
  EXPECT_EQ(endProcess(id), EndResult::Ended);
  int status = 0;
  EXPECT_EQ(waitpid(child, &status, 0), child);
  EXPECT_EQ(WTERMSIG(status), SIGKILL);
  EXPECT_EQ(endProcess(id), EndResult::CannotOpen);
}

}  // namespace

}  // namespace vel::platform
