// Renaming that never replaces an entry. Both names are relative to the same directory, which is open, or
// AT_FDCWD.
#pragma once

#include "platform/system_error.h"

namespace vel::platform {

/// Fails with EEXIST if the target exists. In one step where the system can do that, else by renameByLink.
SystemError renameWithoutReplacing(int directory, const char* from, const char* to) noexcept;

/// The way for file systems that cannot do that in one step: makes a second link, then removes the first.
/// Where there are no links (none to directories anywhere) it looks for the target first, which leaves a
/// moment for others.
SystemError renameByLink(int directory, const char* from, const char* to) noexcept;

}  // namespace vel::platform
