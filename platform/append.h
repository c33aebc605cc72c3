// Appending to files from within a program that must not notice any failure.
#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/system_error.h"

namespace vel::platform {

/// Saves the thread's last errors, errno and on Windows the system's last error, and restores them at its
/// end.
class LastErrorsKept {
 public:
  LastErrorsKept() noexcept;
  LastErrorsKept(const LastErrorsKept&) = delete;
  LastErrorsKept& operator=(const LastErrorsKept&) = delete;
  ~LastErrorsKept();

 private:
  int runtime_;
  std::uint32_t system_;
};

struct Bytes {
  const char* data;
  std::size_t size;
};

/// Which files may be appended to. OwnFile is for names that other users know or can guess, in directories
/// where they may create files: on POSIX systems it refuses links and everything but a regular file of this
/// user that has one name and that nobody else may write to. (On Windows each user has scratch directories of
/// their own.) SharedFile is AnyFile, but a missing one is created for everybody, as far as the system's
/// default for new files allows.
enum class AppendTo { AnyFile, OwnFile, SharedFile };

/// Opens a file for appending; a missing one is created for this user alone, unless it is a SharedFile.
/// Children do not inherit the descriptor. Never blocks. Fails with ELOOP or EACCES for a link and EPERM for
/// another user's file where OwnFile refuses them.
SystemError openForAppending(const char* name, AppendTo target, int& descriptor) noexcept;
/// Appends both pieces in one system call, so that the entries of other processes are before or after them,
/// not between. Sets `written` to the number of bytes written, also after a failure. No failure raises a
/// signal.
SystemError appendBytes(int descriptor, const Bytes& first, const Bytes& second,
                        std::uint64_t& written) noexcept;
/// Closes the descriptor in any case. A failure means that bytes appended before may be lost.
SystemError closeAppended(int descriptor) noexcept;

}  // namespace vel::platform
