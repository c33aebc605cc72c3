// The file that is written beside a target and takes its place: for saving and for copying.
#pragma once

#include <sys/types.h>

#include "platform/replacing.h"
#include "platform/system_error.h"

namespace vel::platform {

/// Without a name nobody sees the file, and nothing can be left behind. Not every file system can do that;
/// where it cannot, the file has a random name from the start.
enum class BesideName { None, Random };

/// Creates the file in the directory that findTarget opened, with these permissions at most.
SystemError createBeside(mode_t mode, BesideName name, Replacement& replacement) noexcept;

/// Gives the file the owner, the group and the access control list of the target, and the permissions `mode`
/// but for those of a group or owner that cannot be kept. Whether it has all that now.
bool copyRights(const Replacement& replacement, mode_t mode) noexcept;

/// Gives the file the target's name: in one step, and in place of nothing but the entry that findTarget held
/// (ECANCELED), or of none (EEXIST). After a failure the file is gone.
SystemError moveIntoPlace(Replacement& replacement) noexcept;

/// Some file systems report a failed write only when the file is closed. This makes them do so, and leaves it
/// open.
SystemError flushWrites(int descriptor) noexcept;
/// Not every file system can promise that a file or directory is stored; that is no failure.
SystemError store(int descriptor) noexcept;
SystemError storeDirectory(const Replacement& replacement) noexcept;

/// Closes what is open, and removes a file that is not in place.
void closeReplacement(Replacement& replacement) noexcept;

/// Removes the temporary file of the latest replacement under way, if it has a name. Async-signal-safe.
void removeUnfinished() noexcept;

}  // namespace vel::platform
