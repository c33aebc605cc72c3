// Changes the root of a copy of this process; users other than root need a user namespace for it.
#include "platform/test/own_root.h"

#include <fcntl.h>
#include <sched.h>
#include <unistd.h>

#include "platform/test/posix/processes.h"
#include "platform/test/scratch_directory.h"

namespace vel::test {

namespace {

bool enter(const std::string& directory) {
  const bool isEntered =
      chroot(directory.c_str()) == 0 || (unshare(CLONE_NEWUSER) == 0 && chroot(directory.c_str()) == 0);
  return isEntered && chdir("/") == 0;
}

}  // namespace

std::optional<std::string> inOwnRoot(const std::string& directory, const InOwnRoot& action) {
  const ScratchDirectory outside;
  const std::string path = outside.write("report", "");
  const int report = open(path.c_str(), O_WRONLY | O_CLOEXEC);
  // An exception must end the copy; it must not continue with other tests.
  const auto act = [&]() noexcept {
    const std::string complaints = action({"", "C:", "z:"});
    return write(report, complaints.data(), complaints.size()) >= 0 ? 0 : 1;
  };
  const int exitCode = exitCodeOf([&directory] { return enter(directory); }, act);
  close(report);
  if (exitCode == kNotPrepared) return std::nullopt;
  return readFile(path) + (exitCode == 0 ? "" : "ended with exit code " + std::to_string(exitCode));
}

}  // namespace vel::test
