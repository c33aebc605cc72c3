// Starting, finding and ending programs. Between fork and exec only async-signal-safe calls are made, and
// what a waited child does until then it does in this process's memory: it changes nothing but its own
// variables and its report. No pipe carries that: other threads' children could hold it open for as long as
// they live.
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
#include "platform/posix/inheritance.h"
#include "platform/posix/native_path.h"

namespace vel::platform {

namespace {

constexpr int kFirstInherited = 3;  ///< the first descriptor behind the standard streams
constexpr int kExitCodeWithoutProgram = 127;

/// What the children tell, until the program begins or all of them are gone.
struct Outcome {
  int error = 0;
  pid_t program = 0;
};

enum class Style { Waited, Detached };

struct Plan {
  const char* program;
  char* const* arguments;
  Style style;
  sigset_t signalMask;  ///< the program's
  Outcome* outcome;     ///< in memory that the children share
};

/// An outcome that children write to, also where the system makes an ordinary fork of every other.
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

/// What this process does about SIGCHLD must not take exit codes away. That is one setting for all threads: a
/// launch that finds such an action puts it aside, and the last of those under way puts it back.
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

/// A thread that is cancelled ends after its launch. Within, that would end the process; and in a child that
/// shares memory, what this thread has on its stack.
class NoCancellation {
 public:
  NoCancellation() noexcept { pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &before_); }
  NoCancellation(const NoCancellation&) = delete;
  NoCancellation& operator=(const NoCancellation&) = delete;
  ~NoCancellation() { pthread_setcancelstate(before_, nullptr); }

 private:
  int before_ = PTHREAD_CANCEL_ENABLE;
};

/// Keeps this process's signal handlers from running in the child.
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
  /// A handler of SIGCHLD that reaps every child must wait for the end of this one. In another thread it
  /// cannot be kept from running.
  void blockChildSignalOnly() const noexcept {
    sigset_t mask = before_;
    sigaddset(&mask, SIGCHLD);
    pthread_sigmask(SIG_SETMASK, &mask, nullptr);
  }

 private:
  sigset_t before_;
};

// ---- In the child ----

/// Handlers would be gone after exec anyway, but must not run before.
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
  const int null = open("/dev/null", O_RDWR | O_CLOEXEC);
  for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream) {
    if (null < 0)
      close(stream);
    else if (null == stream)
      fcntl(null, F_SETFD, 0);
    else
      dup2(null, stream);
  }
}

/// Returns only without the program.
void execProgram(const Plan& plan) noexcept {
  resetHandlers();
  pthread_sigmask(SIG_SETMASK, &plan.signalMask, nullptr);
  execve(plan.program, plan.arguments, environ);
}

/// 0 when the pipe was closed by the program's start.
int errorFrom(int pipe) noexcept {
  int error = 0;
  const ssize_t length = retrying([&] { return read(pipe, &error, sizeof error); });
  return length == static_cast<ssize_t>(sizeof error) ? error : 0;
}

/// Its parent ends at once, so that the system's first process takes care of the program's end. Between the
/// two is a pipe that no other thread's child can have.
void startDetached(const Plan& plan) noexcept {
  setsid();
  useNullStreams();
  int ends[2];
  plan.outcome->error = pipe2(ends, O_CLOEXEC) == 0 ? 0 : errno;
  if (plan.outcome->error != 0) return;
  const pid_t program = _Fork();
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

/// The wait status of a child; false when the system does not give it.
bool waitFor(pid_t child, int& status) noexcept {
  return retrying([&] { return waitpid(child, &status, 0); }) == child;
}

std::uint32_t exitCodeOf(int status) noexcept {
  constexpr int kFirstCodeOfSignals = 128;
  return static_cast<std::uint32_t>(WIFSIGNALED(status) ? kFirstCodeOfSignals + WTERMSIG(status)
                                                        : WEXITSTATUS(status));
}

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
  // With a directory the file need not be runnable: exec tells what is wrong with it.
  if (hasDirectory(name)) return tryPaths(NameForms::ofProgram(name), acceptExisting, &found);
  return searchProgram(name, found.out, found.capacity);
}

/// A detached child forks once more, which one in shared memory must not.
pid_t startChild(const Plan& plan) noexcept {
  if (plan.style == Style::Detached) {
    const pid_t child = _Fork();
    if (child == 0) runChild(plan);
    return child;
  }
  // NOLINTNEXTLINE(clang-analyzer-security.insecureAPI.vfork): signals are blocked, and runChild is safe
  const pid_t child = vfork();
  // NOLINTNEXTLINE(clang-analyzer-unix.Vfork): it never returns
  if (child == 0) runChild(plan);
  return child;
}

/// Starts a program and waits for the first child's end.
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
  // Of a detached program there is what was told, whoever took notice of the child's end.
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
  // As a signed number, 0 and everything above would address whole groups of processes.
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
