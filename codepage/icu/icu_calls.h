// Thin wrappers over ICU's converter functions, which tests can replace. Statuses are passed through;
// VelClIcuInterface translates them.
#pragma once

#include <cstddef>

#include "codepage/icu/icu_library.h"

namespace vel::codepage {

/// Opens ICU's converter of a CCSID, with fallback mappings switched on; the caller closes it. On failure
/// returns null; `status` is then ICU's error. On success `status` may be a warning. The result is const
/// because the public functions hold converters as const void*; calls that change the state cast it away.
const IcuConverter* openIcuConverter(const IcuFunctions& icu, std::uint32_t ccsid, IcuStatus& status);

/// The buffers of one call, with sizes in bytes, and the status that the call sets.
struct IcuBuffers {
  char* target;
  std::size_t targetSize;
  const char* source;      ///< moved past what was consumed
  std::size_t sourceSize;  ///< counted from the original `source`; not reduced
  IcuStatus status;        ///< kIcuSuccess, a warning or an error
};

/// The statuses that callers of these wrappers test. Warnings are negative, errors positive.
inline constexpr IcuStatus kIcuSuccess = 0;
inline constexpr IcuStatus kIcuOutOfMemory = 7;
inline constexpr IcuStatus kIcuBufferOverflow = 15;
inline constexpr IcuStatus kIcuUnsupported = 16;

/// Convert a piece of a text and return the number of bytes written. The converter keeps output that does not
/// fit, and an incomplete last character, for the next call. With `flush` the piece is the last of the text:
/// an incomplete character is then an error.
std::size_t continueToUnicode(const IcuFunctions& icu, const IcuConverter* converter, IcuBuffers& buffers,
                              bool flush);
std::size_t continueFromUnicode(const IcuFunctions& icu, const IcuConverter* converter, IcuBuffers& buffers,
                                bool flush);

/// Convert a whole text and return the number of bytes written. After an error the converter is reset, so
/// that nothing of this text is left for the next one.
std::size_t convertToUnicode(const IcuFunctions& icu, const IcuConverter* converter, IcuBuffers& buffers);
std::size_t convertFromUnicode(const IcuFunctions& icu, const IcuConverter* converter, IcuBuffers& buffers);

/// Returns a target size in bytes that no text of `units` units exceeds.
std::size_t sufficientSizeFromUnicode(const IcuFunctions& icu, const IcuConverter* converter,
                                      std::size_t units) noexcept;

}  // namespace vel::codepage
