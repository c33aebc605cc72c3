// What is asked of ICU's functions, whichever they are; their statuses mean nothing here.
#pragma once

#include <cstddef>

#include "codepage/icu/icu_library.h"

namespace vel::codepage {

/// Opens the converter for a CCSID with fallback mappings; null with an error in `status`.
const IcuConverter* openIcuConverter(const IcuFunctions& icu, std::uint32_t ccsid, IcuStatus& status);

/// One conversion: both ends of both texts, and what became of it.
struct IcuBuffers {
  char* target;
  std::size_t targetSize;
  const char* source;  ///< moves behind what was consumed
  std::size_t sourceSize;
  IcuStatus status;
};

/// The statuses that the library itself looks at; VelClIcuInterface translates all of them. Warnings are
/// negative, errors positive.
inline constexpr IcuStatus kIcuSuccess = 0;
inline constexpr IcuStatus kIcuOutOfMemory = 7;
inline constexpr IcuStatus kIcuBufferOverflow = 15;
inline constexpr IcuStatus kIcuUnsupported = 16;

/// Both return the bytes written. What does not fit stays in the converter, and what is incomplete, too,
/// unless this is the end.
std::size_t continueToUnicode(const IcuFunctions& icu, const IcuConverter* converter, IcuBuffers& text,
                              bool isEnd);
std::size_t continueFromUnicode(const IcuFunctions& icu, const IcuConverter* converter, IcuBuffers& text,
                                bool isEnd);

/// The same for a whole text. What an error leaves in the converter is dropped.
std::size_t convertToUnicode(const IcuFunctions& icu, const IcuConverter* converter, IcuBuffers& text);
std::size_t convertFromUnicode(const IcuFunctions& icu, const IcuConverter* converter, IcuBuffers& text);

/// The target bytes that are enough for any text of so many units.
std::size_t sufficientSizeFromUnicode(const IcuFunctions& icu, const IcuConverter* converter,
                                      std::size_t units) noexcept;

}  // namespace vel::codepage
