// Renames without ever replacing an entry. Each name is relative to its open directory, or to AT_FDCWD.
#pragma once

#include "platform/system_error.h"

namespace vel::platform {

/// Fails with EEXIST if the target exists. Atomic where the system supports it, else done by renameByLink.
SystemError renameWithoutReplacing(int fromDirectory, const char* from, int toDirectory,
                                   const char* to) noexcept;

/// The fallback: makes a second link, then removes the first. Without hard links (never allowed for
/// directories) it checks for the target and renames, which leaves a moment in which an entry that appears
/// would be replaced.
SystemError renameByLink(int fromDirectory, const char* from, int toDirectory, const char* to) noexcept;

}  // namespace vel::platform
