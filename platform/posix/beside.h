// Creates a file beside its target and moves it into the target's place, for saving and for copying.
#pragma once

#include <sys/stat.h>
#include <sys/types.h>

#include "platform/replacing.h"
#include "platform/system_error.h"

namespace vel::platform {

/// An unnamed file is invisible, and nothing of it can be left behind. File systems that do not support it
/// get a file with a random name from the start.
enum class BesideName { None, Random };

/// Creates the file in the directory that findTarget opened, with at most these permissions. Sets
/// `descriptor`.
SystemError createBeside(mode_t mode, BesideName name, Replacement& replacement) noexcept;

/// Creates a symbolic link instead of a file.
SystemError linkBeside(const char* text, Replacement& replacement) noexcept;

/// Gives the file the owner, group and access control list of the target and the permissions `mode`, without
/// those of an owner or group that could not be kept. Returns whether nothing was lost.
bool copyRights(const Replacement& replacement, mode_t mode) noexcept;

/// Gives the file the target's name atomically. Replaces only the entry that findTarget held (else
/// ECANCELED); if findTarget found no entry, replaces nothing (EEXIST if one has appeared). After a failure
/// the temporary file is gone.
SystemError moveIntoPlace(Replacement& replacement) noexcept;

/// Makes file systems that report a failed write only when the file is closed report it now; the file stays
/// open.
SystemError flushWrites(int descriptor) noexcept;
/// Waits until the file, or the directory with its new name, is on stable storage. Succeeds where the file
/// system cannot promise that.
SystemError store(int descriptor) noexcept;
SystemError storeDirectory(const Replacement& replacement) noexcept;

/// Closes all descriptors, and removes the temporary file if it is not in place.
void closeReplacement(Replacement& replacement) noexcept;

/// Closes everything and removes an unfinished file when it goes out of scope.
class BesideTarget : public Replacement {
 public:
  BesideTarget() = default;
  BesideTarget(const BesideTarget&) = delete;
  BesideTarget& operator=(const BesideTarget&) = delete;
  ~BesideTarget() { closeReplacement(*this); }
};

/// Fails with EISDIR for a directory and EINVAL for everything else but a regular file. A descriptor of -1
/// gives errno.
SystemError statusOfRegularFile(int descriptor, struct stat& status) noexcept;

/// Copies from one descriptor's position to the end.
SystemError copyByReading(int source, int target) noexcept;

/// Removes the temporary file of the latest replacement under way, if it has a name. Async-signal-safe.
void removeUnfinished() noexcept;

}  // namespace vel::platform
