// Child processes by posix_spawn.
#include "platform/test/child_process.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>

#include "platform/test/child_streams.h"
#include "platform/test/posix/spawn.h"

namespace vel::test {

namespace {

std::vector<std::string> changedEnvironment(const Variables& changes) {
  std::vector<std::string> result;
  for (char** entry = environ; *entry != nullptr; ++entry) result.emplace_back(*entry);
  for (const auto& [name, value] : changes) {
    const std::string start = name + "=";
    std::erase_if(result, [&start](const std::string& entry) { return entry.starts_with(start); });
    if (!value.empty()) result.push_back(start + value);
  }
  return result;
}

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
  std::vector<char*> pointers(texts.size() + 1);
  std::ranges::transform(texts, pointers.begin(), [](std::string& text) { return text.data(); });
  return pointers;
}

/// The child's wait status; it is killed at the time limit.
int waitFor(pid_t child) {
  int status = 0;
  for (int passedMs = 0; waitpid(child, &status, WNOHANG) == 0; ++passedMs) {
    if (passedMs > kChildTimeLimitSeconds * 1000) kill(child, SIGKILL);
    usleep(1000);
  }
  return status;
}

}  // namespace

pid_t spawn(const std::string& program, const std::vector<std::string>& arguments,
            const Variables& environment, const std::array<std::string, 3>& streams) {
  std::vector<std::string> command = {programPath(program, "")};
  command.insert(command.end(), arguments.begin(), arguments.end());
  std::vector<std::string> variables = changedEnvironment(environment);
  posix_spawn_file_actions_t files;
  posix_spawn_file_actions_init(&files);
  int stream = 0;
  for (const std::string& path : streams) {
    if (!path.empty())
      posix_spawn_file_actions_addopen(&files, stream, path.c_str(), O_RDWR | O_APPEND | O_NOCTTY, 0);
    ++stream;
  }
  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  sigset_t signals;
  sigfillset(&signals);
  posix_spawnattr_setsigdefault(&attributes, &signals);
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGDEF);
  pid_t child = -1;
  if (posix_spawn(&child, command.front().c_str(), &files, &attributes, pointersTo(command).data(),
                  pointersTo(variables).data()) != 0)
    child = -1;
  posix_spawnattr_destroy(&attributes);
  posix_spawn_file_actions_destroy(&files);
  return child;
}

ChildResult runChild(const std::string& program, const std::vector<std::string>& arguments,
                     const ChildOptions& options) {
  const ChildStreams streams(options.input);
  ChildResult result;
  const pid_t child =
      spawn(program, arguments, options.environment, {streams.input, streams.output, streams.errors});
  result.started = child != -1;
  if (!result.started) return result;
  const int status = waitFor(child);
  result.endedAbnormally = !WIFEXITED(status);
  if (WIFEXITED(status)) result.exitCode = WEXITSTATUS(status);
  streams.collect(options, result);
  return result;
}

std::string ownProgram() {
  return std::filesystem::read_symlink("/proc/self/exe").string();
}

}  // namespace vel::test
