// Traces the system calls of a child.
#include "platform/test/posix/failing_calls.h"

#include <fcntl.h>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <sys/user.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdlib>
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

const std::map<std::uint64_t, std::string> kOtherNames = {{SYS_copy_file_range, "copy_file_range"},
                                                          {SYS_faccessat2, "access"},
                                                          {SYS_fcntl, "fcntl"},
                                                          {SYS_fstat, "status"},
                                                          {SYS_ftruncate, "truncate"},
                                                          {SYS_getdents64, "list"},
                                                          {SYS_getrandom, "random"},
                                                          {SYS_ioctl, "clone"},
                                                          {SYS_lseek, "seek"},
                                                          {SYS_mkdirat, "create directory"},
                                                          {SYS_newfstatat, "status"},
                                                          {SYS_openat, "open"},
                                                          {SYS_statx, "status"},
                                                          {SYS_symlinkat, "create link"},
                                                          {SYS_unlinkat, "remove"},
                                                          {SYS_utimensat, "set times"}};

/// Tracks the descriptors that a child writes to, and selects the calls that count.
class CallWatch {
 public:
  CallWatch(pid_t child, const std::string& directory, bool countsAny)
      : child_(child), directory_(directory), countsAny_(countsAny) {}

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
    const auto other = kOtherNames.find(number);
    return name_.empty() && countsAny_ && other != kOtherNames.end() ? other->second : name_;
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
  bool countsAny_;
  std::uint64_t descriptor_ = 0;
  std::set<std::uint64_t> descriptors_{STDOUT_FILENO};
};

/// Halves what a write is asked to write. The caller of the system call relies on its registers and memory,
/// so they are put back afterwards.
class ShortWrite {
 public:
  /// Returns false for a write of less than two bytes.
  bool begin(pid_t child, std::uint64_t number, const std::uint64_t* arguments) {
    child_ = child;
    count_ = arguments[2];
    const bool isVector = number == SYS_writev;
    length_ = isVector ? arguments[1] + offsetof(iovec, iov_len) : 0;
    size_ = isVector ? ptrace(PTRACE_PEEKDATA, child_, length_, nullptr) : static_cast<long>(count_);
    if (size_ < 2) return false;
    if (isVector) ptrace(PTRACE_POKEDATA, child_, length_, size_ / 2);
    setCount(isVector ? 1 : count_ / 2);
    return true;
  }
  void end() {
    setCount(count_);
    if (length_ != 0) ptrace(PTRACE_POKEDATA, child_, length_, size_);
  }

 private:
  void setCount(std::uint64_t count) { ptrace(PTRACE_POKEUSER, child_, offsetof(user, regs.rdx), count); }

  pid_t child_ = 0;
  std::uint64_t count_ = 0, length_ = 0;  ///< the third argument, and the address of a vector's first length
  long size_ = 0;
};

/// The kernel rejects the number -1, so the call is not made.
void replaceCall(pid_t child, bool isEntry, long error) {
  ptrace(PTRACE_POKEUSER, child, isEntry ? offsetof(user, regs.orig_rax) : offsetof(user, regs.rax),
         isEntry ? -1L : -error);
}

}  // namespace

int waitFailingCall(pid_t child, int number, const std::string& directory, std::string& name,
                    const FailureKind& kind) {
  int status = 0;
  waitpid(child, &status, 0);
  ptrace(PTRACE_SETOPTIONS, child, nullptr, PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL);
  CallWatch watch(child, directory, kind.isOfAnyCall);
  ShortWrite shortWrite;
  const bool isShort = number < 0;
  int remaining = std::abs(number);
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
      const bool counts = isShort ? begun == "write" : !begun.empty();
      fails = counts && --remaining <= 0 && name.empty() &&
              (!isShort || shortWrite.begin(child, call.entry.nr, call.entry.args));
      if (fails) name = begun;
    } else {
      watch.end(fails && !isShort ? -kind.error : call.exit.rval);
      if (fails && isShort) shortWrite.end();
    }
    if (fails && !isShort) replaceCall(child, isEntry, kind.error);
    if (fails && !isEntry) {
      // The rest runs faster without being watched.
      ptrace(PTRACE_DETACH, child, nullptr, 0);
      waitpid(child, &status, 0);
      break;
    }
  }
  return status;
}

#else

int waitFailingCall(pid_t child, int, const std::string&, std::string&, const FailureKind&) {
  int status = 0;
  do {
    waitpid(child, &status, 0);
  } while (WIFSTOPPED(status) && ptrace(PTRACE_CONT, child, nullptr, 0) == 0);
  return status;
}

#endif

}  // namespace vel::test
