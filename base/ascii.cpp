// Parses decimal numbers with the same results on every system. The runtime's atol and strtoul saturate at
// the width of long, which is 32 bits on Windows and 64 on Linux.
#include "base/ascii.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace vel {

namespace {

struct Decimal {
  bool isNegative;
  std::uint64_t magnitude;  ///< capped just above 32 bits, so that no further digit overflows it
  const char* end;          ///< null if the text does not begin with digits
};

Decimal parseDecimal(const char* text) noexcept {
  constexpr std::uint64_t kBeyond32Bits = std::uint64_t{1} << 32;
  text += std::strspn(text, " \t\n\v\f\r");
  Decimal number{*text == '-', 0, nullptr};
  if (*text == '-' || *text == '+') ++text;
  for (; isAsciiDigit(*text); number.end = ++text) {
    const auto digit = static_cast<std::uint64_t>(*text - '0');
    number.magnitude = std::min(number.magnitude * 10 + digit, kBeyond32Bits);
  }
  return number;
}

}  // namespace

std::int32_t parseInt32(const char* text) noexcept {
  using Limits = std::numeric_limits<std::int32_t>;
  const Decimal number = parseDecimal(text);
  const auto value = static_cast<std::int64_t>(number.magnitude);
  return static_cast<std::int32_t>(
      std::clamp<std::int64_t>(number.isNegative ? -value : value, Limits::min(), Limits::max()));
}

std::uint32_t parseUint32(const char* text, const char** end) noexcept {
  constexpr std::uint64_t kHighest = std::numeric_limits<std::uint32_t>::max();
  const Decimal number = parseDecimal(text);
  if (end != nullptr) *end = number.end == nullptr ? text : number.end;
  return number.isNegative ? 0 : static_cast<std::uint32_t>(std::min(number.magnitude, kHighest));
}

}  // namespace vel
