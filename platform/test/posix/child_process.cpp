// Child processes by posix_spawn.
#include "platform/test/child_process.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <climits>
#include <stdexcept>
#include <thread>

#include "platform/test/child_streams.h"

namespace vel::test {

namespace {

/// This process's environment with the options' changes.
std::vector<std::string> childEnvironment(const ChildOptions& options) {
  std::vector<std::string> result;
  for (char** entry = environ; *entry != nullptr; ++entry) result.emplace_back(*entry);
  for (const auto& [name, value] : options.environment) {
    const std::string start = name + "=";
    std::erase_if(result, [&start](const std::string& entry) { return entry.starts_with(start); });
    if (!value.empty()) result.push_back(start + value);
  }
  return result;
}

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  pointers.reserve(texts.size() + 1);
  for (std::string& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

bool spawn(pid_t& child, std::vector<std::string> command, const ChildStreams& streams,
           std::vector<std::string> environment) {
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, streams.input().c_str(), O_RDONLY, 0);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, streams.output().c_str(), O_WRONLY | O_APPEND, 0);
  posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, streams.errors().c_str(), O_WRONLY | O_APPEND, 0);
  const int error = posix_spawn(&child, command.front().c_str(), &actions, nullptr,
                                pointersTo(command).data(), pointersTo(environment).data());
  posix_spawn_file_actions_destroy(&actions);
  return error == 0;
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
  result.started = spawn(child, command, streams, childEnvironment(options));
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
