// What a conversion did.
#pragma once

#include <cstdint>
#include <ostream>
#include <string>
#include <string_view>

#include "vel_include/vel_codepage.h"

struct Outcome {
  std::string bytes;
  std::size_t consumed = 0;
  std::uint32_t errorId = VEL_NO_ERROR;
  VelEnErrorClass errorClass = VelEnErrorClass::UNKNOWN;

  bool operator==(const Outcome&) const = default;
};

inline std::string hex(std::string_view bytes) {
  constexpr char kDigits[] = "0123456789ABCDEF";
  std::string text;
  for (const char c : bytes) {
    text += kDigits[static_cast<unsigned char>(c) >> 4];
    text += kDigits[c & 0xF];
  }
  return text;
}

/// For failing tests.
inline void PrintTo(const Outcome& outcome, std::ostream* stream) {
  *stream << hex(outcome.bytes) << " of " << outcome.consumed << " bytes, error " << outcome.errorId << "/"
          << static_cast<int>(outcome.errorClass);
}

inline Outcome incomplete(std::string bytes, std::size_t consumed) {
  return {std::move(bytes), consumed, CPCONVERTER_INCOMPLETE, VelEnErrorClass::USER_DATA_ERROR};
}
inline Outcome tooBig(std::string bytes, std::size_t consumed) {
  return {std::move(bytes), consumed, CPCONVERTER_TOO_BIG, VelEnErrorClass::DATA_OUT_OF_BOUNDS};
}

/// Units as bytes, low byte first.
inline std::string unitBytes(const std::u16string& units) {
  std::string bytes;
  for (const char16_t unit : units) {
    bytes += static_cast<char>(unit & 0xFF);
    bytes += static_cast<char>(unit >> 8);
  }
  return bytes;
}
