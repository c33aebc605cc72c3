// What children inherit from this process and leave behind in it, and where programs are found.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <filesystem>
#include <future>
#include <string>
#include <vector>

#include "platform/platform.h"
#include "platform/posix/inheritance.h"
#include "platform/test/posix/variable.h"
#include "platform/test/process_state.h"
#include "platform/test/scratch_directory.h"

namespace vel::platform {

namespace {

namespace fs = std::filesystem;
using test::readFile;
using test::ScratchDirectory;

class Command {
 public:
  explicit Command(std::vector<std::string> texts) : texts_(std::move(texts)) {
    for (std::string& text : texts_) pointers_.push_back(text.data());
    pointers_.push_back(nullptr);
  }

  Launch launch() const { return {nullptr, pointers_.data(), false}; }

 private:
  std::vector<std::string> texts_;
  std::vector<char*> pointers_;
};

/// The exit code; a failed launch as a negative error.
int run(std::vector<std::string> texts) {
  const Command command(std::move(texts));
  std::uint32_t exitCode = 0;
  const std::uint32_t error = launchAndWait(command.launch(), exitCode);
  return error != 0 ? -static_cast<int>(error) : static_cast<int>(exitCode);
}

int runShell(const std::string& script) {
  return run({"/bin/sh", "-c", script});
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

std::string writeProgram(const ScratchDirectory& scratch, const std::string& name, const std::string& text,
                         mode_t mode = 0700) {
  std::string path = scratch.write(name, text);
  EXPECT_EQ(chmod(path.c_str(), mode), 0);
  return path;
}

std::string found(const char* name) {
  std::array<char, 261> path{};
  return searchProgram(name, path.data(), path.size()) ? path.data() : "-";
}

/// Puts a signal's treatment back.
class TemporaryAction {
 public:
  TemporaryAction(int number, void (*handler)(int), int flags = 0) : number_(number) {
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = flags;
    sigaction(number, &action, &before_);
  }
  TemporaryAction(const TemporaryAction&) = delete;
  TemporaryAction& operator=(const TemporaryAction&) = delete;
  ~TemporaryAction() { sigaction(number_, &before_, nullptr); }

 private:
  int number_;
  struct sigaction before_ {};
};

void reapEverything(int) {
  const int error = errno;
  while (waitpid(-1, nullptr, WNOHANG) > 0) {
  }
  errno = error;
}

TEST(PosixLaunching, SignalsBecomeExitCodes) {
  EXPECT_EQ(runShell("exit 3"), 3);
  EXPECT_EQ(runShell("kill -KILL $$"), 128 + SIGKILL);
  EXPECT_EQ(runShell("kill -TERM $$"), 128 + SIGTERM);
  EXPECT_TRUE(hasNoChildren());
}

TEST(PosixLaunching, FailedStartsTellTheSystemsNumber) {
  const ScratchDirectory scratch;
  EXPECT_EQ(run({"vel_no_such_program"}), -ENOENT);
  EXPECT_EQ(run({scratch.path("absent/program")}), -ENOENT);
  EXPECT_EQ(run({scratch.path()}), -ENOENT);
  EXPECT_EQ(run({writeProgram(scratch, "text", "no program")}), -ENOEXEC);
  EXPECT_EQ(run({writeProgram(scratch, "plain", "#!/bin/sh\n", 0600)}), -EACCES);
  EXPECT_EQ(run({writeProgram(scratch, "script", "#!/nowhere/shell\n")}), -ENOENT);
  const Command text({scratch.path("text")});
  std::uint32_t id = 0;
  EXPECT_EQ(launchDetached(text.launch(), id), static_cast<std::uint32_t>(ENOEXEC));
  EXPECT_TRUE(hasNoChildren());
}

TEST(PosixLaunching, OnlyStandardStreamsAreInherited) {
  const ScratchDirectory scratch;
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
  const pid_t child = fork();
  if (child == 0) {
    closeListedDescriptors(4);
    int left = 0;
    for (const int number : open)
      if (number >= 4 && fcntl(number, F_GETFD) != -1) ++left;
    _exit(left + (fcntl(STDERR_FILENO, F_GETFD) == -1 ? 100 : 0));
  }
  int status = -1;
  waitpid(child, &status, 0);
  EXPECT_EQ(status, 0);
  for (const int number : open) close(number);
}

TEST(PosixLaunching, StandardOutputIsTheSame) {
  const ScratchDirectory scratch;
  const int before = dup(STDOUT_FILENO);
  const int file = open(scratch.path("out").c_str(), O_CREAT | O_WRONLY, 0600);
  dup2(file, STDOUT_FILENO);
  const int exitCode = runShell("echo printed");
  dup2(before, STDOUT_FILENO);
  close(before);
  close(file);
  EXPECT_EQ(exitCode, 0);
  EXPECT_EQ(readFile(scratch.path("out")), "printed\n");
}

TEST(PosixLaunching, WorksWithoutStandardStreams) {
  // The pipe's own ends then have their numbers.
  const pid_t child = fork();
  if (child == 0) {
    for (const int stream : {0, 1, 2}) close(stream);
    const bool exits = runShell("exit 3") == 3;
    const Command command({"/bin/sh", "-c", "exit 0"});
    std::uint32_t id = 0;
    const bool detaches = launchDetached(command.launch(), id) == 0 && id != 0;
    _exit(exits && detaches && run({"/nowhere/program"}) == -ENOENT ? 0 : 1);
  }
  int status = -1;
  waitpid(child, &status, 0);
  EXPECT_EQ(status, 0);
}

TEST(PosixLaunching, SignalsAreTreatedAsBefore) {
  sigset_t blocked;
  sigset_t before;
  sigemptyset(&blocked);
  sigaddset(&blocked, SIGUSR1);
  pthread_sigmask(SIG_SETMASK, &blocked, &before);
  const TemporaryAction handled(SIGUSR2, reapEverything);
  // USR1 is signal 10 and blocked, so the child lives on; USR2 has no handler there.
  EXPECT_EQ(runShell("kill -USR1 $$; exit 5"), 5);
  EXPECT_EQ(runShell("kill -USR2 $$; exit 5"), 128 + SIGUSR2);
  sigset_t after;
  pthread_sigmask(SIG_SETMASK, &before, &after);
  for (int number = 1; number < 32; ++number)
    EXPECT_EQ(sigismember(&after, number), number == SIGUSR1 ? 1 : 0) << number;
}

TEST(PosixLaunching, ExitCodesSurviveWhateverIsDoneAboutChildSignals) {
  {
    const TemporaryAction ignored(SIGCHLD, SIG_IGN);
    // Whoever ends first must not put the action back under the others.
    std::vector<std::future<int>> codes;
    for (const char* script : {"sleep 0.02; exit 3", "sleep 0.1; exit 3", "sleep 0.2; exit 3"})
      codes.push_back(std::async(std::launch::async, runShell, script));
    for (std::future<int>& code : codes) EXPECT_EQ(code.get(), 3);
    struct sigaction action {};
    sigaction(SIGCHLD, nullptr, &action);
    EXPECT_EQ(action.sa_handler, SIG_IGN);
  }
  {
    const TemporaryAction noWait(SIGCHLD, SIG_DFL, SA_NOCLDWAIT);
    EXPECT_EQ(runShell("exit 4"), 4);
  }
  const TemporaryAction reaping(SIGCHLD, reapEverything);
  for (int times = 0; times < 20; ++times) EXPECT_EQ(runShell("exit 5"), 5);
  EXPECT_TRUE(hasNoChildren());
}

TEST(PosixLaunching, DetachedProgramsAreOnTheirOwn) {
  const Command command({"/bin/sleep", "60"});
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  std::uint32_t id = 0;
  ASSERT_EQ(launchDetached(command.launch(), id), 0U);
  const auto process = static_cast<pid_t>(id);
  EXPECT_TRUE(hasNoChildren());
  EXPECT_NE(getsid(process), getsid(0));
  EXPECT_NE(getpgid(process), getpgid(0));
  const std::string entry = "/proc/" + std::to_string(id);
  for (const char* stream : {"/fd/0", "/fd/1", "/fd/2"})
    EXPECT_EQ(fs::read_symlink(entry + stream), "/dev/null");
  EXPECT_FALSE(hasOpen(id, fs::read_symlink("/proc/self/fd/" + std::to_string(ends[0]))));
  EXPECT_FALSE(hasOpen(id, fs::read_symlink("/proc/self/fd/" + std::to_string(ends[1]))));
  EXPECT_EQ(fs::read_symlink(entry + "/cwd"), fs::current_path());
  EXPECT_EQ(endProcess(id), EndResult::Ended);
  EXPECT_TRUE(test::waitForEnd(id));
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
  EXPECT_EQ(endProcess(0), EndResult::CannotOpen);
  EXPECT_EQ(endProcess(0U - static_cast<std::uint32_t>(child)), EndResult::CannotOpen);
  EXPECT_EQ(endProcess(0x80000000U), EndResult::CannotOpen);
  EXPECT_TRUE(test::isRunning(static_cast<unsigned int>(child)));
  EXPECT_EQ(endProcess(static_cast<std::uint32_t>(child)), EndResult::Ended);
  int status = 0;
  EXPECT_EQ(waitpid(child, &status, 0), child);
  EXPECT_EQ(WTERMSIG(status), SIGKILL);
  EXPECT_EQ(endProcess(static_cast<std::uint32_t>(child)), EndResult::CannotOpen);
}

/// A current directory "here" and a search path of "first" and "second".
class ProgramSearch : public testing::Test {
 protected:
  std::string add(const std::string& name, mode_t mode = 0700) const {
    return writeProgram(scratch_, name, "#!/bin/sh\nexit 7\n", mode);
  }

  test::ScratchDirectory scratch_;

 private:
  test::CurrentDirectory here_{fs::path(scratch_.write("here/x", "")).parent_path()};
  test::Variable path_{"PATH", ("/nowhere::../first:" + scratch_.path("second")).c_str()};
};

TEST_F(ProgramSearch, LooksInTheCurrentDirectoryThenAlongThePath) {
  EXPECT_EQ(found("tool.EXE"), "-");
  EXPECT_EQ(found(""), "-");
  const std::string anyCase = add("second/Tool");
  EXPECT_EQ(found("tool.EXE"), anyCase);
  const std::string second = add("second/tool");
  EXPECT_EQ(found("tool.EXE"), second);
  EXPECT_EQ(found("tool.exe"), second);
  EXPECT_EQ(found("tool.bin"), "-");
  add("first/tool", 0600);
  fs::create_directory(scratch_.path("here/tool"));
  EXPECT_EQ(found("tool.EXE"), second);
  chmod(scratch_.path("first/tool").c_str(), 0700);
  EXPECT_EQ(found("tool.EXE"), fs::current_path().string() + "/../first/tool");
  const std::string given = add("second/tool.EXE");
  EXPECT_EQ(found("tool.EXE"), given);
  const std::string here = add("here/tool.EXE");
  EXPECT_EQ(found("tool.EXE"), here);
  EXPECT_EQ(run({"tool.EXE"}), 7);
}

TEST_F(ProgramSearch, PathsThatDoNotFitAreNotFound) {
  const std::string tool = add("second/tool");
  for (const std::size_t capacity : {std::size_t{1}, tool.size(), tool.size() + 1}) {
    std::vector<char> out(capacity);
    EXPECT_EQ(searchProgram("tool", out.data(), out.size()), capacity > tool.size());
  }
  EXPECT_EQ(found(std::string(5000, 'x').c_str()), "-");
}

TEST_F(ProgramSearch, NamesWithADirectoryMayBeInBackSlashes) {
  const std::string tool = add("Dir/Tool");
  EXPECT_EQ(run({tool}), 7);
  EXPECT_EQ(run({tool + ".EXE"}), 7);
  EXPECT_EQ(run({test::backSlashed(scratch_.path("DIR/TOOL.EXE"))}), 7);
  EXPECT_EQ(run({"..\\dir\\tool"}), 7);
  EXPECT_EQ(run({"..\\dir\\absent"}), -ENOENT);
  EXPECT_TRUE(programExists("..\\dir\\tool.exe"));
  EXPECT_FALSE(programExists("..\\dir\\absent.exe"));
  add("here/tool");
  EXPECT_EQ(run({"C:tool.EXE"}), 7);
}

}  // namespace

}  // namespace vel::platform
