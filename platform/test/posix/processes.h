// Arguments of programs, and copies of this process, also as another user, for tests of what users can do to
// each other. Only the superuser can become another user.
#pragma once

#include <grp.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>
#include <string>
#include <vector>

namespace vel::test {

/// As exec takes them, null at the end.
inline std::vector<char*> pointersTo(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  for (std::string& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

/// Nobody in particular, and no member of any group.
inline constexpr uid_t kOtherUser = 54321;

inline bool becomeOtherUser() {
  return setgroups(0, nullptr) == 0 && setgid(kOtherUser) == 0 && setuid(kOtherUser) == 0;
}

/// The wait status of a copy of this process that does this and ends.
inline int statusOfCopy(const std::function<bool()>& action) {
  const pid_t child = fork();
  if (child == 0) _exit(action() ? 0 : 1);
  int status = -1;
  waitpid(child, &status, 0);
  return status;
}

/// Runs `act` in a child, as `who` changes it, and returns its exit code; -1 when there is none.
template <typename Who, typename Act>
int exitCodeOf(Who who, Act act) {
  const pid_t child = fork();
  if (child == 0) _exit(who() ? act() : 255);
  int status = 0;
  return waitpid(child, &status, 0) == child && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

inline bool canBecomeOtherUser() {
  return geteuid() == 0 && exitCodeOf(becomeOtherUser, [] { return 0; }) == 0;
}

/// For what the superuser would never be refused: true for everybody else.
inline bool beUnprivileged() {
  return geteuid() != 0 || becomeOtherUser();
}
inline bool canBeUnprivileged() {
  return geteuid() != 0 || canBecomeOtherUser();
}

/// Lets the files that this process writes have 10 bytes at most, permanently.
inline bool limitFileSizes() {
  const rlimit ten{10, 10};
  return setrlimit(RLIMIT_FSIZE, &ten) == 0;
}

/// Another user's child as long as this object lives.
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
