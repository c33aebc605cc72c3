// Access control lists of files, which stand beside the permission bits.
#pragma once

namespace vel::platform {

/// Gives an open file the access control list of another one. Without a list there the file keeps none
/// either, not even the one that its directory gave it. Returns whether the two agree now, or the system has
/// no lists.
bool copyAccessList(int from, int to) noexcept;

}  // namespace vel::platform
