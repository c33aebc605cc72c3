// Makes stdlib.h declare rand_s, which gives random numbers of the system.
#define _CRT_RAND_S

#include "platform/windows/random_numbers.h"

#include <stdlib.h>

#include <cwchar>

namespace vel::platform {

bool randomNumber(std::uint64_t& number) noexcept {
  unsigned int high = 0, low = 0;
  if (rand_s(&high) != 0 || rand_s(&low) != 0) return false;
  number = std::uint64_t{high} << 32 | low;
  return true;
}

bool appendRandomEnd(GrowingText& name) noexcept {
  std::uint64_t number = 0;
  wchar_t random[32];
  if (!randomNumber(number)) {
    SetLastError(ERROR_GEN_FAILURE);
    return false;
  }
  std::swprintf(random, sizeof random / sizeof random[0], L"~%015llx.tmp",
                static_cast<unsigned long long>(number >> 4));
  name.append(random);
  return true;
}

}  // namespace vel::platform
