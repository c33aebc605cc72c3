// Stops a child at each of its system calls.
#include "platform/test/posix/failing_calls.h"

#include <fcntl.h>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/user.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <set>

namespace vel::test {

#if defined(__x86_64__)

namespace {

/// One call, and how it is known which descriptors are written to.
class CallWatch {
 public:
  CallWatch(pid_t child, std::string directory) : child_(child), directory_(std::move(directory)) {}

  /// What the call is, "" for one that fails never.
  std::string nameOf(const user_regs_struct& call) const {
    switch (call.orig_rax) {
      case SYS_open:
        return (call.rsi & O_ACCMODE) != O_RDONLY ? "open" : "";
      case SYS_openat:
        return (call.rdx & O_ACCMODE) != O_RDONLY ? "open" : "";
      case SYS_write:
      case SYS_writev:
        return isWritten(call.rdi) ? "write" : "";
      case SYS_read:
      case SYS_readv:
      case SYS_pread64:
        return isRead(call.rdi) ? "read" : "";
      case SYS_fsync:
        return isWritten(call.rdi) ? "fsync" : "fsync of a directory";
      case SYS_fchown:
      case SYS_fchmod:
        return call.orig_rax == SYS_fchown ? "fchown" : "fchmod";
      case SYS_linkat:
        return "link";
      case SYS_close:
        return isWritten(call.rdi) ? "close" : "";
      case SYS_rename:
      case SYS_renameat:
      case SYS_renameat2:
        return "rename";
      default:
        return "";
    }
  }
  void ended(const std::string& name, const user_regs_struct& call, unsigned long long result) {
    if (name == "open" && static_cast<long long>(result) >= 0) descriptors_.insert(result);
    if (name == "close") descriptors_.erase(call.rdi);
  }

 private:
  bool isWritten(unsigned long long descriptor) const { return descriptors_.count(descriptor) == 1; }
  bool isRead(unsigned long long descriptor) const {
    const auto link = "/proc/" + std::to_string(child_) + "/fd/" + std::to_string(descriptor);
    std::error_code isClosed;
    if (directory_.empty()) return false;
    return std::filesystem::read_symlink(link, isClosed).string().starts_with(directory_ + '/');
  }

  pid_t child_;
  std::string directory_;
  std::set<unsigned long long> descriptors_{STDOUT_FILENO};
};

}  // namespace

int waitFailingCall(pid_t child, int number, const std::string& directory, std::string& name) {
  int status = 0;
  waitpid(child, &status, 0);
  ptrace(PTRACE_SETOPTIONS, child, nullptr, PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL);
  CallWatch watch(child, directory);
  user_regs_struct call{}, result{};
  std::string current;
  bool isInside = false, fails = false;
  for (int signal = 0; ptrace(PTRACE_SYSCALL, child, nullptr, signal) == 0;) {
    waitpid(child, &status, 0);
    if (!WIFSTOPPED(status)) break;
    const bool isCall = WSTOPSIG(status) == (SIGTRAP | 0x80);
    signal = isCall || WSTOPSIG(status) == SIGTRAP ? 0 : WSTOPSIG(status);
    if (!isCall) continue;
    isInside = !isInside;
    ptrace(PTRACE_GETREGS, child, nullptr, &result);
    if (isInside) {
      call = result;
      current = watch.nameOf(call);
      fails = !current.empty() && --number == 0;
      if (!fails) continue;
      name = current;
      result.orig_rax = static_cast<unsigned long long>(-1);
    } else {
      if (fails) result.rax = static_cast<unsigned long long>(-EIO);
      watch.ended(current, call, result.rax);
    }
    if (fails) ptrace(PTRACE_SETREGS, child, nullptr, &result);
  }
  return status;
}

#else

int waitFailingCall(pid_t child, int, const std::string&, std::string&) {
  int status = 0;
  do {
    waitpid(child, &status, 0);
  } while (WIFSTOPPED(status) && ptrace(PTRACE_CONT, child, nullptr, 0) == 0);
  return status;
}

#endif

}  // namespace vel::test
