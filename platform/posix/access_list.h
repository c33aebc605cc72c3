// Access control lists of files, which refine the permission bits.
#pragma once

namespace vel::platform {

/// Copies the access control list from one open file to another. If `from` has no list, removes the one that
/// `to` may have inherited from its directory. Returns whether the lists agree now; true if the system does
/// not support lists.
bool copyAccessList(int from, int to) noexcept;

}  // namespace vel::platform
