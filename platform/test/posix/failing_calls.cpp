// Traces the system calls of a child.
#include "platform/test/posix/failing_calls.h"

#include <fcntl.h>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/user.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <filesystem>
#include <map>
#include <set>

namespace vel::test {

#if defined(__x86_64__)

namespace {

const std::map<std::uint64_t, std::string> kNames = {
    {SYS_open, "open"},     {SYS_openat, "open"},     {SYS_write, "write"},     {SYS_writev, "write"},
    {SYS_read, "read"},     {SYS_readv, "read"},      {SYS_pread64, "read"},    {SYS_fsync, "fsync"},
    {SYS_fchown, "fchown"}, {SYS_fchmod, "fchmod"},   {SYS_linkat, "link"},     {SYS_close, "close"},
    {SYS_rename, "rename"}, {SYS_renameat, "rename"}, {SYS_renameat2, "rename"}};

/// Tracks the descriptors that a child writes to, and selects the calls that count.
class CallWatch {
 public:
  CallWatch(pid_t child, const std::string& directory) : child_(child), directory_(directory) {}

  /// Returns the name of the call, or "" for one that does not count.
  std::string begin(std::uint64_t number, const std::uint64_t* arguments) {
    const auto found = kNames.find(number);
    descriptor_ = arguments[0];
    name_ = found != kNames.end() ? found->second : "";
    const bool isWritten = descriptors_.contains(descriptor_);
    const std::uint64_t mode = arguments[number == SYS_open ? 1 : 2] & O_ACCMODE;
    if (name_ == "fsync" && !isWritten) return "fsync of a directory";
    const bool counts = name_ == "open"   ? mode != O_RDONLY
                        : name_ == "read" ? isRead()
                                          : isWritten || (name_ != "write" && name_ != "close");
    if (!counts) name_.clear();
    return name_;
  }
  void end(std::int64_t result) {
    if (name_ == "open" && result >= 0) descriptors_.insert(static_cast<std::uint64_t>(result));
    if (name_ == "close") descriptors_.erase(descriptor_);
  }

 private:
  bool isRead() const {
    const auto link = "/proc/" + std::to_string(child_) + "/fd/" + std::to_string(descriptor_);
    std::error_code isClosed;
    return !directory_.empty() &&
           std::filesystem::read_symlink(link, isClosed).string().starts_with(directory_ + '/');
  }

  pid_t child_;
  std::string directory_, name_;
  std::uint64_t descriptor_ = 0;
  std::set<std::uint64_t> descriptors_{STDOUT_FILENO};
};

}  // namespace

int waitFailingCall(pid_t child, int number, const std::string& directory, std::string& name) {
  int status = 0;
  waitpid(child, &status, 0);
  ptrace(PTRACE_SETOPTIONS, child, nullptr, PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL);
  CallWatch watch(child, directory);
  bool fails = false;
  for (int signal = 0; ptrace(PTRACE_SYSCALL, child, nullptr, signal) == 0;) {
    waitpid(child, &status, 0);
    if (!WIFSTOPPED(status)) break;
    const bool isCall = WSTOPSIG(status) == (SIGTRAP | 0x80);
    signal = isCall || WSTOPSIG(status) == SIGTRAP ? 0 : WSTOPSIG(status);
    __ptrace_syscall_info call{};
    if (!isCall || ptrace(PTRACE_GET_SYSCALL_INFO, child, sizeof call, &call) <= 0) continue;
    const bool isEntry = call.op == PTRACE_SYSCALL_INFO_ENTRY;
    if (isEntry) {
      const std::string begun = watch.begin(call.entry.nr, call.entry.args);
      fails = !begun.empty() && --number == 0;
      if (fails) name = begun;
    } else {
      watch.end(fails ? -EIO : call.exit.rval);
    }
    // The kernel rejects the number -1, so the call is not made.
    if (fails)
      ptrace(PTRACE_POKEUSER, child, isEntry ? offsetof(user, regs.orig_rax) : offsetof(user, regs.rax),
             isEntry ? -1L : -long{EIO});
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
