// Changes the root of a copy of this process; users other than root need a user namespace for it.
#include "platform/test/own_root.h"

#include <fcntl.h>
#include <sched.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/test/scratch_directory.h"

namespace vel::test {

namespace {

constexpr int kNotPermitted = 77;

bool enter(const std::string& directory) {
  const bool isEntered =
      chroot(directory.c_str()) == 0 || (unshare(CLONE_NEWUSER) == 0 && chroot(directory.c_str()) == 0);
  return isEntered && chdir("/") == 0;
}

/// Ends this copy of the process, even after an exception; it must not continue with other tests.
[[noreturn]] void run(const std::string& directory, const InOwnRoot& action, int report) noexcept {
  if (!enter(directory)) _exit(kNotPermitted);
  const std::string complaints = action({"", "C:", "z:"});
  const bool isTold = write(report, complaints.data(), complaints.size()) >= 0;
  _exit(isTold ? 0 : 1);
}

}  // namespace

std::optional<std::string> inOwnRoot(const std::string& directory, const InOwnRoot& action) {
  const ScratchDirectory outside;
  const std::string path = outside.write("report", "");
  const int report = open(path.c_str(), O_WRONLY | O_CLOEXEC);
  const pid_t child = fork();
  if (child == 0) run(directory, action, report);
  int status = -1;
  waitpid(child, &status, 0);
  close(report);
  if (WIFEXITED(status) && WEXITSTATUS(status) == kNotPermitted) return std::nullopt;
  return readFile(path) + (status == 0 ? "" : "ended with status " + std::to_string(status));
}

}  // namespace vel::test
