// The target sizes of conversion functions: the size that a call requires, and one that is always sufficient.
#pragma once

#include <cstddef>

#include "codepage/conversion.h"

namespace vel::codepage {

/// Returns a * b, or the largest size_t if that overflows.
constexpr std::size_t saturatingProduct(std::size_t a, std::size_t b) noexcept {
  return b != 0 && a > static_cast<std::size_t>(-1) / b ? static_cast<std::size_t>(-1) : a * b;
}

/// Returns the target size that runConversion must check before the call; 0 if the function checks for
/// itself, or if the target is certainly large enough.
std::size_t requiredTargetSize(VelClConverterABase::VelConversionFunction function,
                               const Call& call) noexcept;

/// Returns a target size in bytes that is sufficient for every source of call.sourceSize bytes. The source
/// itself is not read.
std::size_t sufficientTargetSize(VelClConverterABase::VelConversionFunction function,
                                 const Call& call) noexcept;

}  // namespace vel::codepage
