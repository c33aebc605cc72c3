// The sizes of names. Other sizes are derived from these.
#pragma once

#include <cstddef>

namespace vel::platform {

/// Longest name in the Windows notation, in characters: what the Win32 functions accept without a prefix. The
/// public VEL_MAX_PATH_LENGTH has the same value.
inline constexpr std::size_t kMaxPathLength = 260;

/// Room for a full name of the system's own: PATH_MAX is 4,096 on Linux. Windows allows longer names, which
/// the functions that use this refuse.
inline constexpr std::size_t kFullNameCapacity = 4100;

}  // namespace vel::platform
