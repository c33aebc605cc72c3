// Forking for a child that executes another program.
#pragma once

#include <sys/types.h>

namespace vel::platform {

/// Forks as fork() does, but runs no handlers of pthread_atfork(): they could wait for a lock that another
/// thread held when this process was forked. Async-signal-safe.
pid_t forkWithoutHandlers() noexcept;

}  // namespace vel::platform
