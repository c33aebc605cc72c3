// What children inherit from this process and leave behind in it.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <climits>
#include <future>

#include "platform/platform.h"
#include "platform/posix/inheritance.h"
#include "platform/test/child_process.h"
#include "platform/test/scratch_directory.h"

namespace vel::platform {

namespace {

namespace fs = std::filesystem;
using Texts = std::vector<std::string>;

/// 0 or the system's number.
int launch(decltype(launchAndWait) way, Texts texts, std::uint32_t& result) {
  std::vector<char*> pointers;
  for (std::string& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return static_cast<int>(way({nullptr, pointers.data(), false}, result));
}

/// The exit code; a failed launch as a negative error.
int run(const Texts& texts) {
  std::uint32_t exitCode = 0;
  const int error = launch(launchAndWait, texts, exitCode);
  return error != 0 ? -error : static_cast<int>(exitCode);
}

int runShell(const std::string& script) {
  return run({"/bin/sh", "-c", script});
}

/// The wait status of a copy of this process that does this and ends.
int statusOfCopy(const std::function<bool()>& action) {
  const pid_t child = fork();
  if (child == 0) _exit(action() ? 0 : 1);
  int status = -1;
  waitpid(child, &status, 0);
  return status;
}

bool hasNoChildren() {
  return waitpid(-1, nullptr, WNOHANG) == -1 && errno == ECHILD;
}

/// Whether a process has a descriptor of that kind. Those that its start opens come and go meanwhile.
bool hasOpen(std::uint32_t process, const fs::path& target) {
  std::error_code gone;
  for (const auto& entry : fs::directory_iterator("/proc/" + std::to_string(process) + "/fd"))
    if (fs::read_symlink(entry.path(), gone) == target) return true;
  return false;
}

void reapEverything(int) {
  const int error = errno;
  while (waitpid(-1, nullptr, WNOHANG) > 0) {
  }
  errno = error;
}

TEST(PosixLaunching, FailedStartsTellTheSystemsNumber) {
  const test::ScratchDirectory scratch;
  const std::string text = scratch.write("text", "no program"),
                    script = scratch.write("script", "#!/nowhere\n");
  EXPECT_EQ(run({text}), -EACCES);
  for (const std::string& runnable : {text, script}) chmod(runnable.c_str(), 0700);
  EXPECT_EQ(run({text}), -ENOEXEC);
  for (const std::string& missing : {scratch.path("absent/program"), scratch.path(), script})
    EXPECT_EQ(run({missing}), -ENOENT);
  // The longest name that a system takes, and one that is longer.
  const std::string program = "/bin/true",
                    longest = std::string(PATH_MAX - 1 - program.size(), '/') + program;
  EXPECT_EQ(run({longest}), 0);
  EXPECT_EQ(run({"/" + longest}), -ENOENT);
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
  std::string test = "false";
  for (const int number : open) test += " || [ -e /proc/$$/fd/" + std::to_string(number) + " ]";
  EXPECT_EQ(runShell(test), 1);
  // The test can see what is open, too.
  EXPECT_EQ(runShell("exec 9</dev/null; [ -e /proc/$$/fd/9 ] && [ -e /proc/$$/fd/1 ]"), 0);
  // The listing itself takes the first free number.
  for (const bool isInputOpen : {true, false})
    EXPECT_EQ(statusOfCopy([&open, isInputOpen] {
                if (!isInputOpen) close(STDIN_FILENO);
                closeListedDescriptors(4);
                bool closed = fcntl(STDERR_FILENO, F_GETFD) != -1;
                for (const int number : open) closed = closed && (number < 4 || fcntl(number, F_GETFD) == -1);
                return closed && (isInputOpen || fcntl(STDIN_FILENO, F_GETFD) == -1);
              }),
              0)
        << isInputOpen;
  for (const int number : open) close(number);
  testing::internal::CaptureStdout();
  EXPECT_EQ(runShell("echo printed"), 0);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "printed\n");
}

/// Copies of this process that live until they are told to end.
class SleepingCopies {
 public:
  SleepingCopies() { isReady_ = pipe(ends_) == 0; }
  SleepingCopies(const SleepingCopies&) = delete;
  SleepingCopies& operator=(const SleepingCopies&) = delete;
  ~SleepingCopies() {
    close(ends_[1]);
    for (const pid_t child : children_) waitpid(child, nullptr, 0);
    close(ends_[0]);
  }

  bool isReady() const { return isReady_; }
  void add() {
    const pid_t child = fork();
    if (child > 0) children_.push_back(child);
    if (child != 0) return;
    char byte = 0;
    close(ends_[1]);
    while (read(ends_[0], &byte, 1) < 0) {
    }
    _exit(0);
  }

 private:
  int ends_[2];
  bool isReady_;
  std::vector<pid_t> children_;
};

int failedLaunches() {
  int failures = 0;
  std::uint32_t id = 0;
  for (int times = 0; times < 20; ++times) {
    failures += runShell("exit 5") == 5 ? 0 : 1;
    failures += launch(launchDetached, {"/bin/sh", "-c", "exit 0"}, id) == 0 ? 0 : 1;
  }
  return failures;
}

// They have all that was open at their start, and keep it.
TEST(PosixLaunching, NeverWaitForTheChildrenOfOtherThreads) {
  std::future<int> failures;
  bool isDone = false;
  {
    SleepingCopies copies;
    ASSERT_TRUE(copies.isReady());
    failures = std::async(std::launch::async, failedLaunches);
    const auto isDoneIn = [&failures](int milliseconds) {
      return failures.wait_for(std::chrono::milliseconds(milliseconds)) == std::future_status::ready;
    };
    for (int left = 300; left > 0 && !isDoneIn(0); --left) copies.add();
    isDone = isDoneIn(test::kTimeLimitMs);
  }
  EXPECT_TRUE(isDone);
  EXPECT_EQ(failures.get(), 0);
}

TEST(PosixLaunching, WorksWithoutStandardStreams) {
  const test::ScratchDirectory scratch;
  const std::string report = scratch.path("report");
  const std::string script = "cd /proc/$$/fd; echo $(readlink 0 1 2) > " + report;
  // What is opened on the way then has their numbers.
  EXPECT_EQ(statusOfCopy([&script] {
              for (const int stream : {0, 1, 2}) close(stream);
              std::uint32_t id = 0;
              return runShell("exit 3") == 3 && run({"/nowhere/program"}) == -ENOENT &&
                     launch(launchDetached, {"/bin/sh", "-c", script}, id) == 0 && id != 0;
            }),
            0);
  EXPECT_TRUE(test::waitUntil([&report] {
    return test::readFile(report) == "/dev/null /dev/null /dev/null\n";
  })) << test::readFile(report);
}

TEST(PosixThreads, ForkedChildrenAreOtherThreads) {
  const std::uint32_t parent = currentThreadId();
  EXPECT_EQ(statusOfCopy([] { return currentThreadId() == static_cast<std::uint32_t>(getpid()); }), 0);
  EXPECT_EQ(currentThreadId(), parent);
}

TEST(PosixLaunching, SignalsAreTreatedAsBeforeAndBecomeExitCodes) {
  sigset_t blocked, before, after;
  sigemptyset(&blocked);
  sigaddset(&blocked, SIGUSR1);
  pthread_sigmask(SIG_SETMASK, &blocked, &before);
  signal(SIGUSR2, reapEverything);
  // USR1 is blocked, so the child lives on; USR2 has no handler there.
  EXPECT_EQ(runShell("kill -USR1 $$; exit 5"), 5);
  EXPECT_EQ(runShell("kill -USR2 $$; exit 5"), 128 + SIGUSR2);
  EXPECT_EQ(runShell("kill -KILL $$"), 128 + SIGKILL);
  signal(SIGUSR2, SIG_DFL);
  pthread_sigmask(SIG_SETMASK, &before, &after);
  for (int number = 1; number < 32; ++number)
    EXPECT_EQ(sigismember(&after, number), number == SIGUSR1 ? 1 : 0) << number;
}

TEST(PosixLaunching, ExitCodesSurviveWhateverIsDoneAboutChildSignals) {
  struct Row {
    void (*handler)(int);
    int flags;
  };
  for (const Row& row : {Row{SIG_IGN, 0}, Row{SIG_DFL, SA_NOCLDWAIT}, Row{reapEverything, 0}}) {
    struct sigaction action {
    }, before{}, after{};
    action.sa_handler = row.handler;
    action.sa_flags = row.flags;
    sigaction(SIGCHLD, &action, &before);
    for (int times = 0; times < 20; ++times) EXPECT_EQ(runShell("exit 5"), 5);
    if (row.handler == SIG_IGN) {
      // Whoever ends first must not put the action back under the others.
      std::vector<std::future<int>> codes;
      for (const char* script : {"sleep 0.02; exit 3", "sleep 0.1; exit 3", "sleep 0.2; exit 3"})
        codes.push_back(std::async(std::launch::async, runShell, script));
      for (std::future<int>& code : codes) EXPECT_EQ(code.get(), 3);
    }
    sigaction(SIGCHLD, &before, &after);
    EXPECT_EQ(after.sa_handler, row.handler);
  }
  EXPECT_TRUE(hasNoChildren());
}

TEST(PosixLaunching, CancelledThreadsEndBehindTheirLaunch) {
  std::vector<int> codes;
  pthread_t thread{};
  const auto cancelled = [](void* codesOfThread) -> void* {
    pthread_cancel(pthread_self());
    static_cast<std::vector<int>*>(codesOfThread)->push_back(runShell("exit 5"));
    pthread_testcancel();
    return nullptr;
  };
  ASSERT_EQ(pthread_create(&thread, nullptr, cancelled, &codes), 0);
  void* result = nullptr;
  EXPECT_EQ(pthread_join(thread, &result), 0);
  EXPECT_TRUE(result == PTHREAD_CANCELED && codes == std::vector<int>{5});
}

TEST(PosixLaunching, DetachedProgramsAreOnTheirOwn) {
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  std::uint32_t id = 0;
  ASSERT_EQ(launch(launchDetached, {"/bin/sleep", "1200"}, id), 0);
  const auto process = static_cast<pid_t>(id);
  EXPECT_TRUE(hasNoChildren());
  EXPECT_TRUE(getsid(process) != getsid(0) && getpgid(process) != getpgid(0));
  const std::string entry = "/proc/" + std::to_string(id);
  for (const char* stream : {"/fd/0", "/fd/1", "/fd/2"})
    EXPECT_EQ(fs::read_symlink(entry + stream), "/dev/null");
  // Both ends look alike.
  EXPECT_FALSE(hasOpen(id, fs::read_symlink("/proc/self/fd/" + std::to_string(ends[0]))));
  EXPECT_EQ(fs::read_symlink(entry + "/cwd"), fs::current_path());
  EXPECT_EQ(endProcess(id), EndResult::Ended);
  EXPECT_TRUE(test::endsWithin(id, test::kTimeLimitMs) && hasNoChildren());
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
