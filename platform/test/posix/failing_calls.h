// Makes one system call of a child fail, or write less than it was asked to.
#pragma once

#include <sys/types.h>

#include <string>

namespace vel::test {

struct FailureKind {
  int error = 5;  ///< EIO
  bool isOfAnyCall =
      false;  ///< also calls that list, query, create and remove entries and copy in the kernel
};

/// Waits for the end of a child that asked to be traced, and returns its wait status. Counts, from 1, the
/// calls that open files for writing, write, sync, close or rename them, change their owner or permissions,
/// or read one in `directory` (unless that is ""). The call of this number is not made and fails with an
/// error; `name` is set to its name, or "" if there are fewer. A negative number counts writes only, and this
/// one, or the next of at least two bytes, writes only its first half. On processors other than x86-64 no
/// call fails.
int waitFailingCall(pid_t child, int number, const std::string& directory, std::string& name,
                    const FailureKind& kind = {});

}  // namespace vel::test
