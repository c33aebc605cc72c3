// Finds the entry that a name leads to through directories that are held open, so that swapping names
// afterwards cannot change which file was found.
#pragma once

#include <sys/stat.h>

#include "platform/file_identity.h"
#include "platform/replacing.h"
#include "platform/system_error.h"

namespace vel::platform {

/// Whether a link in the last component is followed or is the target itself.
enum class LastLink { Follow, Hold };

/// Opens the target's directory and, for writing, the target itself, without changing it. `heldTarget` stays
/// -1 if the file does not exist. Never waits for the reader of a pipe. LastLink::Follow leads to an existing
/// target or fails with ENOENT; LastLink::Hold makes the link itself the target.
SystemError findTarget(const char* path, LastLink links, Replacement& replacement) noexcept;
/// As findTarget, for a path relative to an open directory, which stays open.
SystemError findTargetAt(int directory, const char* path, LastLink links, Replacement& replacement) noexcept;

/// Whether the target's name still leads to the held entry.
bool isStillTarget(const Replacement& replacement) noexcept;

FileIdentity identityOf(const struct stat& status) noexcept;

}  // namespace vel::platform
