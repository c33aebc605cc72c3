// Starts, finds and ends programs. Splitting a command line into arguments is the caller's work.
//
//   waited:    this process --vfork--> child, which executes the program; this process waits for its end
//   detached:  this process --fork--> child --fork--> grandchild, which executes the program;
//              the child exits at once, so the system's first process adopts and later reaps the program
//
// A vfork child runs in this process's memory while the calling thread is suspended. It is cheap however
// large this process is, but the child may change nothing except its own variables and the Outcome. Between
// fork and exec only async-signal-safe functions are called, because another thread may have held any lock,
// that of malloc for example, when the child was forked.
//
// Children report errors through an Outcome in shared memory. A pipe to this process would not do: a child
// that another thread forks in the same moment inherits the write end and could hold it open for as long as
// it lives.
#include <fcntl.h>
#include <pthread.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <mutex>
#include <new>

#include "platform/launching.h"
#include "platform/posix/descriptor.h"
#include "platform/posix/file_search.h"
#include "platform/posix/fork.h"
#include "platform/posix/inheritance.h"
#include "platform/posix/native_path.h"
#include "platform/posix/pipes.h"

namespace vel::platform {

namespace {

constexpr int kFirstInherited = 3;  ///< the first descriptor after the standard streams
/// The shell's exit code for a command that cannot be found.
constexpr int kExitCodeWithoutProgram = 127;

/// The report of the children; complete once the program runs or all of them have ended.
struct Outcome {
  int error = 0;
  pid_t program = 0;
};

enum class Style { Waited, Detached };

struct Plan {
  const char* program;
  char* const* arguments;
  Style style;
  sigset_t signalMask;  ///< restored before the program starts
  Outcome* outcome;     ///< in memory shared with the children
};

/// An outcome that children can write to after an ordinary fork, too. Some systems implement vfork as one.
class SharedOutcome {
 public:
  SharedOutcome() noexcept
      : memory_(mmap(nullptr, sizeof(Outcome), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0)) {
    if (isMapped()) new (memory_) Outcome;
  }
  SharedOutcome(const SharedOutcome&) = delete;
  SharedOutcome& operator=(const SharedOutcome&) = delete;
  ~SharedOutcome() {
    if (isMapped()) munmap(memory_, sizeof(Outcome));
  }

  bool isMapped() const noexcept { return memory_ != MAP_FAILED; }
  Outcome* get() const noexcept { return static_cast<Outcome*>(memory_); }

 private:
  void* memory_;
};

/// While SIGCHLD is ignored (or SA_NOCLDWAIT is set) the kernel reaps children itself and their exit codes
/// are lost. The disposition is per process, so concurrent launches share it: a launch that finds such a
/// disposition sets SIG_DFL, and the last launch under way restores it.
class SigchldDisposition {
 public:
  void useDefault() noexcept {
    const std::lock_guard lock(guard_);
    ++launches_;
    struct sigaction current {};
    sigaction(SIGCHLD, nullptr, &current);
    if (current.sa_handler != SIG_IGN && (current.sa_flags & SA_NOCLDWAIT) == 0) return;
    previous_ = current;
    isReplaced_ = true;
    struct sigaction standard {};
    standard.sa_handler = SIG_DFL;
    sigaction(SIGCHLD, &standard, nullptr);
  }
  void restore() noexcept {
    const std::lock_guard lock(guard_);
    if (--launches_ != 0 || !isReplaced_) return;
    isReplaced_ = false;
    sigaction(SIGCHLD, &previous_, nullptr);
  }

 private:
  std::mutex guard_;
  int launches_ = 0;
  bool isReplaced_ = false;
  struct sigaction previous_ {};
};

constinit SigchldDisposition sigchldDisposition;

/// Defers the cancellation of this thread until its launch is over. Unwinding from within would pass noexcept
/// functions, which ends the process; in a vfork child it would also destroy what this thread has on the
/// shared stack.
class NoCancellation {
 public:
  NoCancellation() noexcept { pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &before_); }
  NoCancellation(const NoCancellation&) = delete;
  NoCancellation& operator=(const NoCancellation&) = delete;
  ~NoCancellation() { pthread_setcancelstate(before_, nullptr); }

 private:
  int before_ = PTHREAD_CANCEL_ENABLE;
};

/// Blocks all signals while the child starts, so that no handler of this process runs in the child, where it
/// would change this process's memory.
class SignalsDuringLaunch {
 public:
  SignalsDuringLaunch() noexcept {
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before_);
    sigchldDisposition.useDefault();
  }
  SignalsDuringLaunch(const SignalsDuringLaunch&) = delete;
  SignalsDuringLaunch& operator=(const SignalsDuringLaunch&) = delete;
  ~SignalsDuringLaunch() {
    sigchldDisposition.restore();
    pthread_sigmask(SIG_SETMASK, &before_, nullptr);
  }

  const sigset_t& before() const noexcept { return before_; }
  /// Unblocks all signals but SIGCHLD for the wait: a SIGCHLD handler that reaps every child would steal this
  /// one's exit code. This covers the calling thread only; a handler in another thread cannot be held back,
  /// and its theft shows as ECHILD.
  void blockChildSignalOnly() const noexcept {
    sigset_t mask = before_;
    sigaddset(&mask, SIGCHLD);
    pthread_sigmask(SIG_SETMASK, &mask, nullptr);
  }

 private:
  sigset_t before_;
};

// ---- In the child ----

/// Exec resets handlers anyway, but one that ran between unblocking the signals and exec would run this
/// process's code in the child.
void resetHandlers() noexcept {
  for (int number = 1; number < NSIG; ++number) {
    struct sigaction action {};
    if (sigaction(number, nullptr, &action) != 0) continue;
    if (action.sa_handler == SIG_DFL || action.sa_handler == SIG_IGN) continue;
    action = {};
    action.sa_handler = SIG_DFL;
    sigaction(number, &action, nullptr);
  }
}

void useNullStreams() noexcept {
  // Without a null device the streams are closed: the program must not use the caller's terminal.
  const int null = open("/dev/null", O_RDWR | O_CLOEXEC);
  for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream) {
    if (null < 0)
      close(stream);
    else if (null == stream)  // dup2 onto itself would keep O_CLOEXEC
      fcntl(null, F_SETFD, 0);
    else
      dup2(null, stream);
  }
}

/// Replaces the child by the program. Returns, with errno set, only if that fails.
void execProgram(const Plan& plan) noexcept {
  resetHandlers();
  pthread_sigmask(SIG_SETMASK, &plan.signalMask, nullptr);
  execve(plan.program, plan.arguments, environ);
}

/// Reads the error that the program's process sent. 0 if exec closed the pipe instead, which means that the
/// program runs.
int errorFrom(int pipe) noexcept {
  int error = 0;
  const ssize_t length = retrying([&] { return read(pipe, &error, sizeof error); });
  return length == static_cast<ssize_t>(sizeof error) ? error : 0;
}

/// Starts the program as a grandchild in a new session. The pipe between child and grandchild is private: the
/// child has only this thread, so nobody else can fork and inherit it.
void startDetached(const Plan& plan) noexcept {
  setsid();
  useNullStreams();
  int ends[2];
  plan.outcome->error = makePipe(ends, 0);
  if (plan.outcome->error != 0) return;
  const pid_t program = forkWithoutHandlers();
  if (program == 0) {
    execProgram(plan);
    const int error = errno;
    static_cast<void>(retrying([&] { return write(ends[1], &error, sizeof error); }));
    _exit(kExitCodeWithoutProgram);
  }
  const int error = errno;
  close(ends[1]);
  plan.outcome->program = program;
  plan.outcome->error = program < 0 ? error : errorFrom(ends[0]);
}

/// Not inlined: a vfork child runs on the parent's stack, so it must write to its own frame and not to slots
/// that the parent still needs.
[[noreturn, gnu::noinline]] void runChild(const Plan& plan) noexcept {
  closeDescriptorsFrom(kFirstInherited);
  if (plan.style == Style::Detached) {
    startDetached(plan);
    _exit(0);
  }
  execProgram(plan);
  plan.outcome->error = errno;
  _exit(kExitCodeWithoutProgram);
}

// ---- In this process ----

/// Waits for a child and gives its wait status. False if somebody else reaped it.
bool waitFor(pid_t child, int& status) noexcept {
  return retrying([&] { return waitpid(child, &status, 0); }) == child;
}

std::uint32_t exitCodeOf(int status) noexcept {
  // The shell's convention for a process that a signal ended.
  constexpr int kFirstCodeOfSignals = 128;
  return static_cast<std::uint32_t>(WIFSIGNALED(status) ? kFirstCodeOfSignals + WTERMSIG(status)
                                                        : WEXITSTATUS(status));
}

/// With the effective IDs, as exec decides; access() would check the real ones.
bool isRunnable(const char* path) noexcept {
  return isRegularFile(path) && faccessat(AT_FDCWD, path, X_OK, AT_EACCESS) == 0;
}

bool acceptExisting(const char* path, void* found) noexcept {
  return isRegularFile(path) && static_cast<FoundPath*>(found)->set(path);
}

bool acceptRunnable(const char* path, void* found) noexcept {
  return isRunnable(path) && static_cast<FoundPath*>(found)->set(path);
}

bool findProgram(const char* name, FoundPath found) noexcept {
  // A name with a directory need not be executable to be found: exec then reports the more precise error.
  if (hasDirectory(name)) return tryPaths(NameForms::ofProgram(name), acceptExisting, &found);
  return searchProgram(name, found.out, found.capacity);
}

/// A detached child forks again, which a vfork child must not do.
pid_t startChild(const Plan& plan) noexcept {
  if (plan.style == Style::Detached) {
    const pid_t child = forkWithoutHandlers();
    if (child == 0) runChild(plan);
    return child;
  }
  // NOLINTNEXTLINE(clang-analyzer-security.insecureAPI.vfork): signals are blocked, and runChild is safe
  const pid_t child = vfork();
  // NOLINTNEXTLINE(clang-analyzer-unix.Vfork): it never returns
  if (child == 0) runChild(plan);
  return child;
}

/// Starts a program and waits for the end of the direct child: of the program itself if waited for, else of
/// the child that forked it.
int run(const Launch& launch, Style style, Outcome& outcome, int& status) noexcept {
  const NoCancellation whole;
  PathBuffer program;
  if (!findProgram(launch.arguments[0], {program.data(), program.size()})) return ENOENT;
  const SharedOutcome shared;
  if (!shared.isMapped()) return errno;
  const SignalsDuringLaunch signals;
  const Plan plan{program.data(), launch.arguments, style, signals.before(), shared.get()};
  const pid_t child = startChild(plan);
  if (child < 0) return errno;
  signals.blockChildSignalOnly();
  const bool known = waitFor(child, status);
  outcome = *shared.get();
  if (outcome.error != 0) return outcome.error;
  // A detached program's process ID is in the report even if somebody else reaped the child between.
  const bool isStarted = style == Style::Detached ? outcome.program > 0 : known;
  return isStarted ? 0 : ECHILD;
}

}  // namespace

NativeError launchAndWait(const Launch& launch, std::uint32_t& exitCode) noexcept {
  Outcome outcome;
  int status = 0;
  const int error = run(launch, Style::Waited, outcome, status);
  exitCode = exitCodeOf(status);
  return static_cast<NativeError>(error);
}

NativeError launchDetached(const Launch& launch, std::uint32_t& processId) noexcept {
  Outcome outcome;
  int status = 0;
  const int error = run(launch, Style::Detached, outcome, status);
  processId = static_cast<std::uint32_t>(outcome.program);
  return static_cast<NativeError>(error);
}

EndResult endProcess(std::uint32_t id) noexcept {
  // kill() addresses process groups with 0 and with negative numbers, which larger IDs would become.
  if (id == 0 || id > INT_MAX) return EndResult::CannotOpen;
  if (kill(static_cast<pid_t>(id), SIGKILL) == 0) return EndResult::Ended;
  return errno == ESRCH || errno == EPERM ? EndResult::CannotOpen : EndResult::Failed;
}

bool programExists(const char* name) noexcept {
  PathBuffer path;
  return findProgram(name, {path.data(), path.size()});
}

bool searchProgram(const char* name, char* out, std::size_t capacity) noexcept {
  FoundPath found{out, capacity};
  constexpr unsigned kPlaces = kInCurrentDirectory | kAlongPath | kAlsoPrivileged;
  return searchFile(NameForms::ofProgram(name), kPlaces, acceptRunnable, &found);
}

}  // namespace vel::platform
