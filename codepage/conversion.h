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

/// The target bytes that a call takes whose function does not check the target's size; 0 for the others.
std::size_t requiredTargetSize(VelClConverterABase::VelConversionFunction function,
                               const Call& call) noexcept;

/// The same for the double-byte functions, by a walk over the source.
std::size_t sizeOfMixedAscii(const Call& call) noexcept;
std::size_t sizeOfMixedEbcdic(const Call& call) noexcept;

/// The target bytes that are enough for any source of that size, whatever it has.
std::size_t sufficientTargetSize(VelClConverterABase::VelConversionFunction function,
                                 const Call& call) noexcept;
/// The same for ICU's conversion from UCS-2.
std::size_t sufficientSizeFromIcu(const Call& call) noexcept;

/// As large as it can be, where the product is larger still.
constexpr std::size_t productOf(std::size_t a, std::size_t b) noexcept {
  return b != 0 && a > static_cast<std::size_t>(-1) / b ? static_cast<std::size_t>(-1) : a * b;
}

}  // namespace vel::codepage
