// Blocks and unblocks the signals by which users and systems end programs. Calls may nest: holdEndingSignals
// returns only the signals that it blocked itself, and release unblocks only those.
#include <pthread.h>
#include <signal.h>

#include "platform/signals.h"

namespace vel::platform {

namespace {

constexpr int kEndingSignals[] = {SIGHUP, SIGINT, SIGTERM};

}  // namespace

std::uint32_t holdEndingSignals() noexcept {
  sigset_t toBlock, before;
  sigemptyset(&toBlock);
  for (const int signal : kEndingSignals) sigaddset(&toBlock, signal);
  pthread_sigmask(SIG_BLOCK, &toBlock, &before);
  // A bit for each signal: their numbers are below 32.
  std::uint32_t newlyBlocked = 0;
  for (const int signal : kEndingSignals)
    if (sigismember(&before, signal) == 0) newlyBlocked |= std::uint32_t{1} << signal;
  return newlyBlocked;
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
