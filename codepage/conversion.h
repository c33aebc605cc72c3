// What the conversion functions share.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "base/utf.h"
#include "vel_include/vel_codepage.h"

namespace vel::codepage {

using Call = VelClConverterABase::_VelStConverter;

/// The source ends in the middle of a character.
inline constexpr _VelStError kIncomplete{CPCONVERTER_INCOMPLETE, VelEnErrorClass::USER_DATA_ERROR};
/// The target cannot take the next character.
inline constexpr _VelStError kTooBig{CPCONVERTER_TOO_BIG, VelEnErrorClass::DATA_OUT_OF_BOUNDS};
/// There is no way between two CCSIDs.
inline constexpr _VelStError kUnsupported{CPCONVERTER_UNSUPPORTED, VelEnErrorClass::INCONSISTENT_SITUATION};

inline constexpr std::size_t kUnitSize = 2;
inline constexpr std::uint16_t kNextLine = 0x0085;
inline constexpr std::uint16_t kLineFeed = 0x000A;

/// Between runs of pairs and of single bytes in EBCDIC.
inline constexpr unsigned char kShiftOut = 0x0E;  ///< to double bytes
inline constexpr unsigned char kShiftIn = 0x0F;   ///< to single bytes
/// The page of single bytes, and where it has U+0085 and U+000A; the generator sees to it.
inline constexpr std::size_t kSingleBytesPage = 1;
inline constexpr unsigned char kNextLineByte = 0x15;
inline constexpr unsigned char kLineFeedByte = 0x25;

/// Units lie in memory low byte first, at any address.
inline std::uint16_t readUnit(const char* from) noexcept {
  std::uint16_t unit;
  std::memcpy(&unit, from, kUnitSize);
  return unit;
}
inline void writeUnit(char* to, std::uint16_t unit) noexcept {
  std::memcpy(to, &unit, kUnitSize);
}

/// How many whole units the source has. An odd size is reported.
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
