// What is asked of ICU's functions, whichever they are; their statuses mean nothing here.
#pragma once

#include <cstddef>

#include "codepage/icu_library.h"

namespace vel::codepage {

/// Opens the converter for a CCSID with fallback mappings; null with an error in `status`.
const IcuConverter* openIcuConverter(const IcuFunctions& icu, std::uint32_t ccsid, IcuStatus& status);

/// One conversion: both ends of both texts, and what became of it.
struct IcuText {
  char* target;
  std::size_t targetSize;
  const char* source;  ///< moves behind what was consumed
  std::size_t sourceSize;
  IcuStatus status;
};

/// Both return the bytes written. What an error leaves in the converter is dropped.
std::size_t convertToUnicode(const IcuFunctions& icu, const IcuConverter* converter, IcuText& text);
std::size_t convertFromUnicode(const IcuFunctions& icu, const IcuConverter* converter, IcuText& text);

}  // namespace vel::codepage
