// What a name leads to, found through directories that are held open: whoever swaps names meanwhile changes
// nothing about a file that was found.
#pragma once

#include <sys/stat.h>

#include "platform/file_identity.h"
#include "platform/replacing.h"
#include "platform/system_error.h"

namespace vel::platform {

/// What becomes of a link in the last place of a path.
enum class LastLink { Follow, Hold };

/// Opens the directory and, for writing, the target itself, which stays untouched; `heldTarget` stays -1 when
/// there is none. Never waits for the reader of a pipe. A link that is followed leads to an existing target,
/// or ENOENT; one that is held is the target itself.
SystemError findTarget(const char* path, LastLink links, Replacement& replacement) noexcept;

/// Whether the target's name still leads to the entry that is held.
bool isStillTarget(const Replacement& replacement) noexcept;

FileIdentity identityOf(const struct stat& status) noexcept;

}  // namespace vel::platform
