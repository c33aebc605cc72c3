// Parses a number that must be the whole of a text and within limits.
#pragma once

#include <cstdint>

namespace vel::consoleui {

enum class NumberFault { None, NotANumber, OutOfRange };

struct NumberLimits {
  std::int32_t minimum, maximum;
};

/// Parses a decimal number with an optional "-". `value` only changes if there is no fault.
NumberFault parseWholeNumber(const char* text, NumberLimits limits, std::int32_t& value) noexcept;

}  // namespace vel::consoleui
