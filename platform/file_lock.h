// Advisory locks of files, for changes that read, edit and replace a file.
#pragma once

#include <cstdint>

#include "platform/file_identity.h"
#include "platform/system_error.h"

namespace vel::platform {

/// Distinguishes a file from others, from an earlier one that had the same inode or index, and from itself
/// before a change; all zeros stands for a missing file.
struct FileState {
  FileIdentity identity;
  std::uint64_t sizeInBytes = 0;
  std::uint64_t changed = 0;  ///< time of the last change, in the system's smallest unit

  bool operator==(const FileState&) const = default;
};

/// The state of an open file, and of the file that a name leads to (a missing file is a success).
SystemError stateOf(int descriptor, FileState& state) noexcept;
SystemError stateAt(const char* name, FileState& state) noexcept;

enum class LockResult {
  Locked,
  Busy,         ///< somebody else has the lock
  Unsupported,  ///< the file system does not support locks; `lock` is set as for Locked
  Failed
};

/// A lock, and the state of the locked file.
struct FileLock {
  void* system = nullptr;  ///< Windows: the named object that is the lock
  int descriptor = -1;     ///< POSIX: the locked file or directory
  FileState file;
};

/// Locks the file that a name leads to, or the place where it is to be created. Never waits. The lock ends
/// with the process at the latest, excludes other locks (of this process, too) and nothing else, is not
/// inherited, and leaves nothing on disk. A device or pipe needs no lock and counts as locked. POSIX: an
/// advisory lock of the file, or of its directory; Windows: a named object made from the file's full name.
LockResult tryLockFile(const char* name, FileLock& lock) noexcept;
void unlockFile(FileLock& lock) noexcept;

}  // namespace vel::platform
