// Child processes by fork, and other processes by their descriptors.
#include "platform/test/child_process.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/test/child_streams.h"
#include "platform/test/posix/terminal_child.h"

namespace vel::test {

namespace {

constexpr int kExitCodeWithoutProgram = 127;

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  for (std::string& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

}  // namespace

pid_t spawn(const std::string& program, const std::vector<std::string>& arguments,
            const Variables& environment, const std::array<std::string, 3>& streams) {
  std::vector<std::string> command = {programPath(program, "")};
  command.insert(command.end(), arguments.begin(), arguments.end());
  std::vector<std::string> variables = changedEnvironment(environ, environment);
  const std::vector<char*> argumentPointers = pointersTo(command), variablePointers = pointersTo(variables);
  const pid_t child = fork();
  if (child != 0) return child;
  setpgid(0, 0);
  for (int number = 1; number < NSIG; ++number) signal(number, SIG_DFL);
  for (int stream = 0; stream < 3; ++stream)
    if (const char* path = streams[static_cast<std::size_t>(stream)].c_str(); *path != '\0')
      dup2(open(path, O_RDWR | O_APPEND | O_NOCTTY | O_CLOEXEC), stream);
  execve(command[0].c_str(), argumentPointers.data(), variablePointers.data());
  _exit(kExitCodeWithoutProgram);
}

ChildResult runChild(const std::string& program, const std::vector<std::string>& arguments,
                     const ChildOptions& options) {
  const ChildStreams streams(options.input);
  ChildResult result;
  const pid_t child =
      spawn(program, arguments, options.environment, {streams.input, streams.output, streams.errors});
  if (!endsWithin(static_cast<unsigned int>(child), kTimeLimitMs)) kill(child, SIGKILL);
  int status = 0;
  waitpid(child, &status, 0);
  result.endedAbnormally = !WIFEXITED(status);
  if (WIFEXITED(status)) result.exitCode = WEXITSTATUS(status);
  result.started = result.exitCode != kExitCodeWithoutProgram;
  streams.collect(options, result);
  return result;
}

std::string ownProgram() {
  return std::filesystem::read_symlink("/proc/self/exe").string();
}

bool endsWithin(unsigned int processId, int milliseconds) {
  pollfd process{static_cast<int>(syscall(SYS_pidfd_open, processId, 0)), POLLIN, 0};
  if (process.fd < 0) return true;
  const bool ended = poll(&process, 1, milliseconds) == 1;
  close(process.fd);
  return ended;
}

void setVariable(const char* name, const char* value) {
  value == nullptr ? unsetenv(name) : setenv(name, value, 1);
}

}  // namespace vel::test
