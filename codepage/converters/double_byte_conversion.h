// The target sizes that only double-byte conversion can tell; its conversion functions are public.
#pragma once

#include <cstddef>

#include "codepage/conversion.h"

namespace vel::codepage {

/// Returns the target bytes that the double-byte functions write for the call's source, by walking over it:
/// for pages with lead bytes, and for pages with shifts.
std::size_t sizeOfMixedAscii(const Call& call) noexcept;
std::size_t sizeOfMixedEbcdic(const Call& call) noexcept;

}  // namespace vel::codepage
