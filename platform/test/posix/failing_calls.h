// A child one of whose system calls fails.
#pragma once

#include <sys/types.h>

#include <string>

namespace vel::test {

/// Waits for the end of a child that asked to be traced, and returns its status. The call of this number,
/// from 1, of those that open files for writing, write, store, close or rename them, change their owner or
/// permissions, or read one in `directory` (unless that is ""), is not made and fails with EIO; `name` tells
/// which it was, "" if there were fewer. Processors other than x86-64 fail none.
int waitFailingCall(pid_t child, int number, const std::string& directory, std::string& name);

}  // namespace vel::test
