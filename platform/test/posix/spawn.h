// How the tests' child processes are started.
#pragma once

#include <sys/types.h>

#include <array>
#include <string>
#include <vector>

#include "platform/test/child_process.h"

namespace vel::test {

/// The three standard streams as files or terminals; an empty one is this process's. The child has a process
/// group of its own and ignores no signal. -1 when it cannot be started.
pid_t spawn(const std::string& program, const std::vector<std::string>& arguments,
            const Variables& environment, const std::array<std::string, 3>& streams);

}  // namespace vel::test
