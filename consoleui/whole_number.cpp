// Numbers of command lines and prompts after useConventions. Without it base/ascii.h parses them, which stops
// at the first character that is no digit.
#include "consoleui/whole_number.h"

#include <cstring>

namespace vel::consoleui {

NumberFault parseWholeNumber(const char* text, NumberLimits limits, std::int32_t& value) noexcept {
  // More than any limit has, so that a number that stays there is out of range.
  constexpr std::int64_t kEnough = std::int64_t{1} << 32;
  const bool isNegative = *text == '-';
  const char* const digits = isNegative ? text + 1 : text;
  if (*digits == '\0' || std::strspn(digits, "0123456789") != std::strlen(digits))
    return NumberFault::NotANumber;
  std::int64_t number = 0;
  for (const char* digit = digits; *digit != '\0' && number < kEnough; ++digit)
    number = number * 10 + (*digit - '0');
  if (isNegative) number = -number;
  if (number < limits.minimum || number > limits.maximum) return NumberFault::OutOfRange;
  value = static_cast<std::int32_t>(number);
  return NumberFault::None;
}

}  // namespace vel::consoleui
