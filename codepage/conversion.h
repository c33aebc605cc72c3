// Types and constants that all conversion functions share: the call, its errors, UCS-2 units in memory, and
// the EBCDIC control bytes that conversions treat specially.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "base/utf.h"
#include "vel_include/vel_codepage.h"

namespace vel::codepage {

using Call = VelClConverterABase::_VelStConverter;

/// The source ends within a character.
inline constexpr _VelStError kIncomplete{CPCONVERTER_INCOMPLETE, VelEnErrorClass::USER_DATA_ERROR};
/// The next character does not fit into the target.
inline constexpr _VelStError kTooBig{CPCONVERTER_TOO_BIG, VelEnErrorClass::DATA_OUT_OF_BOUNDS};
/// No route leads from one CCSID to the other.
inline constexpr _VelStError kUnsupported{CPCONVERTER_UNSUPPORTED, VelEnErrorClass::INCONSISTENT_SITUATION};

inline constexpr std::size_t kUnitSize = 2;
/// Intentional: UTF-8 has U+FFFF (EF BF BF), not U+FFFD, in place of unpaired surrogates and noncharacters.
inline constexpr std::uint16_t kUtf8Replacement = 0xFFFF;
inline constexpr std::uint16_t kNextLine = 0x0085;
inline constexpr std::uint16_t kLineFeed = 0x000A;

/// The shift bytes of mixed EBCDIC text, which switch between single-byte and double-byte mode.
inline constexpr unsigned char kShiftOut = 0x0E;  ///< to double-byte mode
inline constexpr unsigned char kShiftIn = 0x0F;   ///< to single-byte mode
/// Index of the page of single bytes in a double-byte table, and the bytes that are mapped to U+0085 and
/// U+000A there in pages with shifts. generate_conversion_tables.py fails if a mapping differs, or if its own
/// copies of these constants do.
inline constexpr std::size_t kSingleBytesPage = 1;
inline constexpr unsigned char kNextLineByte = 0x15;
inline constexpr unsigned char kLineFeedByte = 0x25;

/// Read and write a unit in host order at any address: texts of callers need not be aligned.
inline std::uint16_t readUnit(const char* from) noexcept {
  std::uint16_t unit;
  std::memcpy(&unit, from, kUnitSize);
  return unit;
}
inline void writeUnit(char* to, std::uint16_t unit) noexcept {
  std::memcpy(to, &unit, kUnitSize);
}

/// Returns the number of whole units in the source. Reports kIncomplete for an odd size.
inline std::size_t countWholeUnits(const Call& call) noexcept {
  if (call.sourceSize % kUnitSize != 0) call.setError(kIncomplete);
  return call.sourceSize / kUnitSize;
}

/// Returns the table or the ICU converter that a converter works with; null for an algorithm.
inline const void* conversionDataOf(const VelClConverterABase& converter) noexcept {
  const char* source = nullptr;
  return Call{converter, nullptr, 0, &source, 0}.getConversionData();
}

}  // namespace vel::codepage
