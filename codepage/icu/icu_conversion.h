// The target size that only ICU can tell; the conversion functions that use ICU are public.
#pragma once

#include <cstddef>

#include "codepage/conversion.h"

namespace vel::codepage {

/// Returns a number of target bytes that is enough for every source of the call's size, by
/// velConvertByAlgorithmIcuFromUnicode.
std::size_t sufficientSizeFromIcu(const Call& call) noexcept;

}  // namespace vel::codepage
