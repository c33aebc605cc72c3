// The sufficient target size of conversions by ICU. The conversion functions are declared in vel_codepage.h.
#pragma once

#include <cstddef>

#include "codepage/conversion.h"

namespace vel::codepage {

/// Returns a target size that velConvertByAlgorithmIcuFromUnicode never exceeds for a source of
/// call.sourceSize bytes.
std::size_t sufficientIcuTargetSize(const Call& call) noexcept;

}  // namespace vel::codepage
