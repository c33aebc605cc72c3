// IDs of processes and threads, and the count of forks.
#include <pthread.h>
#include <unistd.h>

#include "platform/posix/thread_id.h"
#include "platform/processes.h"

namespace vel::platform {

std::uint32_t detail::forks = 0;

namespace {

/// gettid() costs more than the rest of a trace entry, so the ID is cached. Initial-exec TLS, because the
/// general-dynamic model costs nearly as much as the call.
thread_local std::uint32_t threadId __attribute__((tls_model("initial-exec"))) = 0;

constinit ForkHandlers forkHandlers = {[] {}, [] {}, [] {}};

/// A forked child is another process with another thread: it must not use the cached ID.
const int registered = pthread_atfork([] { forkHandlers.before(); }, [] { forkHandlers.inParent(); },
                                      [] {
                                        ++detail::forks;
                                        threadId = 0;
                                        forkHandlers.inChild();
                                      });

/// Caches the ID only if the fork handler is registered; without it a child could report its parent's thread.
std::uint32_t queryAndCacheThreadId() noexcept {
  const std::uint32_t id = queryThreadId();
  if (registered == 0) threadId = id;
  return id;
}

}  // namespace

std::uint32_t currentProcessId() noexcept {
  return static_cast<std::uint32_t>(getpid());
}

std::uint32_t currentThreadId() noexcept {
  return threadId != 0 ? threadId : queryAndCacheThreadId();
}

void setForkHandlers(const ForkHandlers& handlers) noexcept {
  forkHandlers = handlers;
}

}  // namespace vel::platform
