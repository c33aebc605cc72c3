// Identifiers of processes and threads.
#include <pthread.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "platform/platform.h"

namespace vel::platform {

std::uint32_t detail::forks = 0;

namespace {

/// Asking the system takes longer than all else that a trace entry costs; so nearly does a variable of the
/// general kind.
thread_local std::uint32_t threadId __attribute__((tls_model("initial-exec"))) = 0;

/// The child of a fork is another process and another thread.
const int registered = pthread_atfork(nullptr, nullptr, [] {
  ++detail::forks;
  threadId = 0;
});

std::uint32_t askThreadId() noexcept {
  const auto id = static_cast<std::uint32_t>(syscall(SYS_gettid));
  if (registered == 0) threadId = id;
  return id;
}

}  // namespace

std::uint32_t currentProcessId() noexcept {
  return static_cast<std::uint32_t>(getpid());
}

std::uint32_t currentThreadId() noexcept {
  return threadId != 0 ? threadId : askThreadId();
}

}  // namespace vel::platform
