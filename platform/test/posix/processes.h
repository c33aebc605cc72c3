// Arguments of programs, and copies of this process, which may run as another user if this one is root. Tests
// get the headers of the system for processes and permissions from here.
#pragma once

#include <grp.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>
#include <string>
#include <vector>

namespace vel::test {

/// Returns the texts as exec requires them, with a null at the end.
inline std::vector<char*> pointersTo(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  pointers.reserve(texts.size() + 1);
  for (std::string& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

/// A user that owns nothing and is in no group.
inline constexpr uid_t kOtherUser = 54321;

inline bool becomeOtherUser() {
  return setgroups(0, nullptr) == 0 && setgid(kOtherUser) == 0 && setuid(kOtherUser) == 0;
}

/// Runs `action` in a copy of this process and returns its wait status; the exit code is 0 if it returned
/// true.
inline int statusOfCopy(const std::function<bool()>& action) {
  const pid_t child = fork();
  if (child == 0) _exit(action() ? 0 : 1);
  int status = -1;
  waitpid(child, &status, 0);
  return status;
}

constexpr int kNotPrepared = 255;

/// Runs `who`, which changes the user, and then `act` in a copy of this process. Returns its exit code: the
/// result of `act`, or kNotPrepared if `who` returned false; -1 if a signal ended it.
template <typename Who, typename Act>
int exitCodeOf(Who who, Act act) {
  const pid_t child = fork();
  if (child == 0) _exit(who() ? act() : kNotPrepared);
  int status = 0;
  return waitpid(child, &status, 0) == child && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

inline bool canBecomeOtherUser() {
  return geteuid() == 0 && exitCodeOf(becomeOtherUser, [] { return 0; }) == 0;
}

/// Drops the privileges of root, which is never refused anything. Returns true for other users.
inline bool beUnprivileged() {
  return geteuid() != 0 || becomeOtherUser();
}
inline bool canBeUnprivileged() {
  return geteuid() != 0 || canBecomeOtherUser();
}

inline mode_t modeOf(const std::string& path) {
  struct stat status {};
  EXPECT_EQ(stat(path.c_str(), &status), 0) << path;
  return status.st_mode & 07777;
}

/// Limits files that this process writes to 10 bytes, permanently.
inline bool limitFileSizes() {
  const rlimit ten{10, 10};
  return setrlimit(RLIMIT_FSIZE, &ten) == 0;
}

/// A child that runs `act` as another user until the end of this object.
class OtherUser {
 public:
  template <typename Act>
  explicit OtherUser(Act act) : child_(fork()) {
    if (child_ != 0) return;
    if (becomeOtherUser()) act();
    _exit(0);
  }
  OtherUser(const OtherUser&) = delete;
  OtherUser& operator=(const OtherUser&) = delete;
  ~OtherUser() {
    kill(child_, SIGKILL);
    waitpid(child_, nullptr, 0);
  }

 private:
  pid_t child_;
};

}  // namespace vel::test
