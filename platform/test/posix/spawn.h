// posix_spawn for the tests' child processes.
#pragma once

#include <spawn.h>
#include <sys/types.h>

#include <string>
#include <utility>
#include <vector>

namespace vel::test {

/// What a child does before its program starts.
class SpawnActions {
 public:
  SpawnActions() { posix_spawn_file_actions_init(&files_); }
  SpawnActions(const SpawnActions&) = delete;
  SpawnActions& operator=(const SpawnActions&) = delete;
  ~SpawnActions() { posix_spawn_file_actions_destroy(&files_); }

  void open(int descriptor, const std::string& path, int mode) {
    posix_spawn_file_actions_addopen(&files_, descriptor, path.c_str(), mode, 0);
  }
  /// Its own process group, so that it can be stopped, and no signal ignored.
  void separate() { separate_ = true; }

  const posix_spawn_file_actions_t& files() const { return files_; }
  bool isSeparate() const { return separate_; }

 private:
  posix_spawn_file_actions_t files_{};
  bool separate_ = false;
};

/// With this process's environment and the changes; an empty value removes a variable.
bool spawn(pid_t& child, std::vector<std::string> command,
           const std::vector<std::pair<std::string, std::string>>& environmentChanges,
           const SpawnActions& actions);

}  // namespace vel::test
