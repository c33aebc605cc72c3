// Decimal text of numbers.
#include <algorithm>
#include <cstdint>

#include "vel_include/vel_helpers.h"

namespace {

/// Terminated digits, written from the lowest upwards and then reversed; returns their number.
unsigned int writeDigits(std::uint64_t magnitude, char* out) noexcept {
  unsigned int count = 0;
  do {
    out[count++] = static_cast<char>('0' + magnitude % 10);
    magnitude /= 10;
  } while (magnitude != 0);
  out[count] = '\0';
  std::reverse(out, out + count);
  return count;
}

unsigned int writeSigned(std::int64_t value, char* out) noexcept {
  const auto bits = static_cast<std::uint64_t>(value);
  if (value >= 0) return writeDigits(bits, out);
  *out = '-';
  return 1 + writeDigits(0 - bits, out + 1);
}

}  // namespace

unsigned int velItoa(int value, char* out) {
  return writeSigned(value, out);
}

unsigned int velLtoa(long value, char* out) {
  return writeSigned(static_cast<std::int32_t>(value), out);
}

unsigned int velULtoa(unsigned long value, char* out) {
  return writeDigits(static_cast<std::uint32_t>(value), out);
}

unsigned int velI64toa(long long value, char* out) {
  return writeSigned(value, out);
}

unsigned int velW64toa(unsigned long long value, char* out) {
  return writeDigits(value, out);
}
