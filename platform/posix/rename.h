// Renaming that never replaces an entry, in the two ways that the file systems know.
#pragma once

#include "platform/platform.h"

namespace vel::platform {

/// Both paths are the system's own, from an open directory or AT_FDCWD. EEXIST when `to` exists.
SystemError renameWithoutReplacing(int directory, const char* from, const char* to) noexcept;

/// The same for file systems that cannot refuse an existing target themselves: by a second link where
/// there are links, else (directories, too) by asking first.
SystemError renameByLink(int directory, const char* from, const char* to) noexcept;

}  // namespace vel::platform
