// Child processes by posix_spawn.
#include "platform/test/child_process.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <climits>
#include <stdexcept>
#include <thread>

#include "platform/test/child_streams.h"
#include "platform/test/posix/spawn.h"

namespace vel::test {

namespace {

bool start(pid_t& child, const std::vector<std::string>& command, const ChildStreams& streams,
           const ChildOptions& options) {
  SpawnActions actions;
  actions.open(STDIN_FILENO, streams.input(), O_RDONLY);
  actions.open(STDOUT_FILENO, streams.output(), O_WRONLY | O_APPEND);
  actions.open(STDERR_FILENO, streams.errors(), O_WRONLY | O_APPEND);
  return spawn(child, command, options.environment, actions);
}

/// The child's wait status; it is killed at the time limit.
int waitFor(pid_t child) {
  using Clock = std::chrono::steady_clock;
  const auto limit = Clock::now() + std::chrono::seconds(kChildTimeLimitSeconds);
  int status = 0;
  while (waitpid(child, &status, WNOHANG) == 0) {
    if (Clock::now() > limit) kill(child, SIGKILL);
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return status;
}

}  // namespace

ChildResult runChild(const std::string& program, const std::vector<std::string>& arguments,
                     const ChildOptions& options) {
  const ChildStreams streams(options.input);
  std::vector<std::string> command = {programPath(program, "")};
  command.insert(command.end(), arguments.begin(), arguments.end());
  ChildResult result;
  pid_t child = 0;
  result.started = start(child, command, streams, options);
  if (!result.started) return result;
  const int status = waitFor(child);
  result.endedAbnormally = !WIFEXITED(status);
  if (WIFEXITED(status)) result.exitCode = WEXITSTATUS(status);
  streams.collect(options, result);
  return result;
}

std::string ownProgram() {
  std::array<char, PATH_MAX> path{};
  const ssize_t length = readlink("/proc/self/exe", path.data(), path.size());
  if (length <= 0) throw std::runtime_error("cannot read /proc/self/exe");
  return {path.data(), static_cast<std::size_t>(length)};
}

}  // namespace vel::test
