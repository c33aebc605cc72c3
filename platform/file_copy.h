// Copying a file.
#pragma once

#include "platform/system_error.h"

namespace vel::platform {

/// Copies contents and permissions; `writable` adds write permission for the owner. An existing target is
/// replaced unless it is read-only (EACCES for every user) or the source itself under another name (EACCES).
/// The copy is made beside the target and then moved into its place, so a failure leaves the target as it
/// was. A link is replaced itself, except one that leads to a directory (EISDIR), device or pipe (EINVAL).
/// Only if the directory accepts no new file is an existing target overwritten in place.
SystemError copyFile(const char* from, const char* to, bool writable = false) noexcept;

}  // namespace vel::platform
