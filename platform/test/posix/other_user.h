// Children that are another user, for tests of what users can do to each other. Only the superuser can start
// them.
#pragma once

#include <grp.h>
#include <signal.h>
#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

namespace vel::test {

/// Nobody in particular, and no member of any group.
inline constexpr uid_t kOtherUser = 54321;

inline bool becomeOtherUser() {
  return setgroups(0, nullptr) == 0 && setgid(kOtherUser) == 0 && setuid(kOtherUser) == 0;
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
