// Thin wrappers over ICU's converter functions, which tests can replace. Status numbers are passed through;
// what they mean in the library's terms is icu_interface.cpp's work.
#pragma once

#include <cstddef>

#include "codepage/icu/icu_library.h"

namespace vel::codepage {

/// Opens ICU's converter of a CCSID, with fallback mappings switched on; the caller closes it. Returns null
/// and sets `status` when ICU has none.
const IcuConverter* openIcuConverter(const IcuFunctions& icu, std::uint32_t ccsid, IcuStatus& status);

/// The buffers of one call, in bytes, and its resulting status.
struct IcuBuffers {
  char* target;
  std::size_t targetSize;
  const char* source;  ///< moved past what was consumed
  std::size_t sourceSize;
  IcuStatus status;
};

/// The statuses that the library itself looks at; VelClIcuInterface translates all of them. Warnings are
/// negative, errors positive.
inline constexpr IcuStatus kIcuSuccess = 0;
inline constexpr IcuStatus kIcuOutOfMemory = 7;
inline constexpr IcuStatus kIcuBufferOverflow = 15;
inline constexpr IcuStatus kIcuUnsupported = 16;

/// Convert a piece of a text and return the bytes written. Output that does not fit stays in the converter
/// for the next call, and so does an incomplete character, unless `isEnd`.
std::size_t continueToUnicode(const IcuFunctions& icu, const IcuConverter* converter, IcuBuffers& text,
                              bool isEnd);
std::size_t continueFromUnicode(const IcuFunctions& icu, const IcuConverter* converter, IcuBuffers& text,
                                bool isEnd);

/// Convert a whole text and return the bytes written. Whatever an error leaves in the converter is dropped,
/// so that the next text does not begin with it.
std::size_t convertToUnicode(const IcuFunctions& icu, const IcuConverter* converter, IcuBuffers& text);
std::size_t convertFromUnicode(const IcuFunctions& icu, const IcuConverter* converter, IcuBuffers& text);

/// Returns a number of target bytes that is enough for any text of `units` units.
std::size_t sufficientSizeFromUnicode(const IcuFunctions& icu, const IcuConverter* converter,
                                      std::size_t units) noexcept;

}  // namespace vel::codepage
