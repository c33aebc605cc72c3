// Blocks and unblocks the signals by which users and systems end programs. Holding may nest: only signals
// that this call blocked are released.
#include <pthread.h>
#include <signal.h>

#include "platform/ending_signals.h"

namespace vel::platform {

namespace {

constexpr int kEndingSignals[] = {SIGHUP, SIGINT, SIGTERM};

}  // namespace

std::uint32_t holdEndingSignals() noexcept {
  sigset_t held, before;
  sigemptyset(&held);
  for (const int signal : kEndingSignals) sigaddset(&held, signal);
  pthread_sigmask(SIG_BLOCK, &held, &before);
  std::uint32_t changed = 0;
  for (const int signal : kEndingSignals)
    if (sigismember(&before, signal) == 0) changed |= std::uint32_t{1} << signal;
  return changed;
}

void releaseEndingSignals(std::uint32_t held) noexcept {
  sigset_t released;
  sigemptyset(&released);
  for (const int signal : kEndingSignals)
    if ((held >> signal & 1) != 0) sigaddset(&released, signal);
  pthread_sigmask(SIG_UNBLOCK, &released, nullptr);
}

void ignoreFileSizeSignal() noexcept {
  signal(SIGXFSZ, SIG_IGN);
}

}  // namespace vel::platform
