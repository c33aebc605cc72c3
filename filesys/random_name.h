// Random characters for names.
#pragma once

#include <cstdint>
#include <string_view>

#include "foundation/allocator.h"
#include "platform/named_files.h"

namespace vel::filesys {

/// Appends 24 characters that nobody can predict. Returns false if the system has no random numbers.
inline bool appendRandomCharacters(String& name) {
  constexpr std::string_view kLetters = "0123456789abcdefghijklmnopqrstuv";
  for (int half = 0; half < 2; ++half) {
    std::uint64_t number = 0;
    if (platform::unpredictableNumber(number) != 0) return false;
    for (int letter = 0; letter < 12; ++letter, number >>= 5) name += kLetters[number & 31];
  }
  return true;
}

}  // namespace vel::filesys
