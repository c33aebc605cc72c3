// Waits for one key from the terminal on standard input.
//
// The terminal is switched to deliver keys immediately and without echo. If a signal ended the process then,
// the user's shell would be left with an unusable terminal. So signals that end or stop the process are
// caught meanwhile and their numbers written into a pipe, which poll() watches beside the terminal (the
// "self-pipe trick"):
//
//   key    ->  read it, restore the terminal, done
//   signal ->  restore the terminal, raise the signal with its own action; if the process goes on, wait anew
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <mutex>

#include "platform/console.h"
#include "platform/posix/descriptor.h"
#include "platform/posix/pipes.h"

namespace vel::platform {

namespace {

constexpr int kSignals[] = {SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGTSTP, SIGALRM, SIGUSR1, SIGUSR2};
constexpr int kSignalCount = sizeof kSignals / sizeof kSignals[0];

/// The write end of the pipe, for the handler; -1 while nobody waits.
volatile sig_atomic_t signalPipe = -1;

extern "C" void forwardSignal(int number) {
  const int savedError = errno;
  const auto byte = static_cast<unsigned char>(number);
  // If the pipe is full, the signals in it suffice to end the wait.
  [[maybe_unused]] const ssize_t written = write(signalPipe, &byte, 1);
  errno = savedError;
}

/// Collects signals in a pipe while it exists; the destructor restores their actions and raises the collected
/// ones. Ignored signals stay ignored.
class SignalWatch {
 public:
  SignalWatch() noexcept {
    if (makePipe(pipe_, O_NONBLOCK) != 0) return;
    signalPipe = pipe_[1];
    struct sigaction action {};
    action.sa_handler = forwardSignal;
    action.sa_flags = SA_RESTART;
    sigfillset(&action.sa_mask);
    for (int i = 0; i < kSignalCount; ++i) {
      sigaction(kSignals[i], nullptr, &previous_[i]);
      if (previous_[i].sa_handler != SIG_IGN) sigaction(kSignals[i], &action, nullptr);
    }
  }
  SignalWatch(const SignalWatch&) = delete;
  SignalWatch& operator=(const SignalWatch&) = delete;
  ~SignalWatch() {
    if (!isValid()) return;
    for (int i = 0; i < kSignalCount; ++i) sigaction(kSignals[i], &previous_[i], nullptr);
    signalPipe = -1;
    for (unsigned char number = 0; read(pipe_[0], &number, 1) == 1;) raise(number);
    close(pipe_[0]);
    close(pipe_[1]);
  }

  bool isValid() const noexcept { return pipe_[0] >= 0; }
  /// Becomes readable when a signal has arrived.
  int descriptor() const noexcept { return pipe_[0]; }

 private:
  int pipe_[2] = {-1, -1};
  struct sigaction previous_[kSignalCount];
};

void setAttributes(const termios& attributes) noexcept {
  static_cast<void>(retrying([&] { return tcsetattr(STDIN_FILENO, TCSANOW, &attributes); }));
}

/// While it exists, the terminal delivers each key immediately and without echo. ISIG stays set, so that
/// Ctrl+C and its like still send signals.
class KeyMode {
 public:
  KeyMode() noexcept : valid_(tcgetattr(STDIN_FILENO, &previous_) == 0) {
    if (!valid_) return;
    termios attributes = previous_;
    attributes.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO);
    attributes.c_cc[VMIN] = 1;
    attributes.c_cc[VTIME] = 0;
    setAttributes(attributes);
  }
  KeyMode(const KeyMode&) = delete;
  KeyMode& operator=(const KeyMode&) = delete;
  ~KeyMode() {
    if (valid_) setAttributes(previous_);
  }

  bool isValid() const noexcept { return valid_; }

 private:
  termios previous_{};
  bool valid_;
};

bool hasInput() noexcept {
  pollfd input{STDIN_FILENO, POLLIN, 0};
  return poll(&input, 1, 0) == 1 && (input.revents & POLLIN) != 0;
}

/// Reads one key. Function keys (which begin with ESC) and characters beyond ASCII send several bytes, which
/// arrive together; the rest must not be left to the next reader.
void readKey() noexcept {
  constexpr int kMaxKeyLength = 16;
  constexpr unsigned char kEscape = 0x1B;
  unsigned char first = 0;
  if (read(STDIN_FILENO, &first, 1) != 1 || (first != kEscape && first < 0x80)) return;
  unsigned char next = 0;
  for (int length = 1; length < kMaxKeyLength && hasInput(); ++length)
    if (read(STDIN_FILENO, &next, 1) != 1) return;
}

enum class Wait { Done, Interrupted, NoTerminal };

/// Waits for a key and reads it, unless a signal arrives first.
Wait readKeyUnlessSignal(const SignalWatch& signals) noexcept {
  pollfd sources[] = {{STDIN_FILENO, POLLIN, 0}, {signals.descriptor(), POLLIN, 0}};
  while (poll(sources, 2, -1) < 0)
    if (errno != EINTR) return Wait::NoTerminal;
  if (sources[1].revents != 0) return Wait::Interrupted;
  readKey();
  return Wait::Done;
}

/// Waits once for a key or a signal. When it returns, the terminal is restored and the signal has been
/// raised.
Wait waitOnce() noexcept {
  // The order matters: destructors run in reverse, so the terminal is restored before signals are raised.
  const SignalWatch signals;
  if (!signals.isValid()) return Wait::NoTerminal;
  const KeyMode keys;
  return keys.isValid() ? readKeyUnlessSignal(signals) : Wait::NoTerminal;
}

}  // namespace

bool waitForConsoleKey() noexcept {
  // Terminal mode and signal actions belong to the process, so two threads must not change them at the same
  // time.
  static std::mutex oneAtATime;
  const std::lock_guard<std::mutex> lock(oneAtATime);
  Wait result = Wait::Interrupted;
  while (result == Wait::Interrupted) result = waitOnce();
  return result == Wait::Done;
}

}  // namespace vel::platform
