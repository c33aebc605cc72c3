// Runs children by fork, and queries other processes in /proc.
#include "platform/test/child_system.h"

#include <fcntl.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/ptrace.h>

#include <filesystem>

#include "platform/test/posix/failing_calls.h"
#include "platform/test/posix/processes.h"
#include "platform/test/scratch_directory.h"

namespace vel::test {

namespace {

constexpr int kExitCodeWithoutProgram = 127;

/// Whether the process has ended; it may be a zombie.
bool isOver(unsigned int processId) {
  const std::string status = readFile("/proc/" + std::to_string(processId) + "/stat");
  const std::size_t name = status.rfind(')');
  return name == std::string::npos || status.compare(name, 3, ") Z") == 0;
}

}  // namespace

void runPlan(ChildPlan plan, ChildResult& result) {
  plan.arguments.insert(plan.arguments.begin(), plan.program);
  const std::vector<char*> arguments = pointersTo(plan.arguments), variables = pointersTo(plan.environment);
  const pid_t child = fork();
  if (child == 0) {
    for (int number = 1; number < NSIG; ++number) signal(number, SIG_DFL);
    int stream = 0;
    for (const std::string& path : plan.streams)
      dup2(open(path.c_str(), O_RDWR | O_APPEND | O_CLOEXEC), stream++);
    if (plan.failingCall != 0) ptrace(PTRACE_TRACEME);
    execve(arguments[0], arguments.data(), variables.data());
    _exit(kExitCodeWithoutProgram);
  }
  int status = 0;
  if (plan.failingCall != 0) {
    status = waitFailingCall(child, plan.failingCall, plan.failingReads, result.failedCall);
  } else {
    if (!endsWithin(static_cast<unsigned int>(child), kTimeLimitMs)) kill(child, SIGKILL);
    waitpid(child, &status, 0);
  }
  result.endedAbnormally = !WIFEXITED(status);
  if (WIFEXITED(status)) result.exitCode = WEXITSTATUS(status);
  result.started = result.exitCode != kExitCodeWithoutProgram;
}

std::vector<std::string> splitBySystem(const std::string& arguments) {
  const std::string printed =
      runChild("/bin/sh", {"-c", "printf '%s\\0' " + arguments}, {.rawOutput = true}).output;
  std::vector<std::string> texts;
  for (std::size_t at = 0; at < printed.size(); at += texts.back().size() + 1)
    texts.emplace_back(printed.c_str() + at);
  return texts;
}

std::string ownProgram() {
  return std::filesystem::read_symlink("/proc/self/exe").string();
}

bool endsWithin(unsigned int processId, int milliseconds) {
  return waitUntil([=] { return isOver(processId); }, milliseconds);
}

void closeDescriptor(int descriptor) {
  close(descriptor);
}

void setVariable(const char* name, const char* value) {
  value == nullptr ? unsetenv(name) : setenv(name, value, 1);
}

}  // namespace vel::test
