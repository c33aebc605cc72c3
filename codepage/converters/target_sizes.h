// How large a target a conversion function needs, before it runs.
#pragma once

#include <cstddef>

#include "codepage/conversion.h"

namespace vel::codepage {

/// The product, or the largest number there is where that is too small for it.
constexpr std::size_t saturatingProduct(std::size_t a, std::size_t b) noexcept {
  return b != 0 && a > static_cast<std::size_t>(-1) / b ? static_cast<std::size_t>(-1) : a * b;
}

/// Returns the target bytes that this call needs if its function does not check the target's size itself; 0
/// for functions that do.
std::size_t requiredTargetSize(VelClConverterABase::VelConversionFunction function,
                               const Call& call) noexcept;

/// Returns a number of target bytes that is enough for every source of the call's size; the source itself is
/// not read.
std::size_t sufficientTargetSize(VelClConverterABase::VelConversionFunction function,
                                 const Call& call) noexcept;

}  // namespace vel::codepage
