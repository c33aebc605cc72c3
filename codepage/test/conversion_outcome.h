// Runs a conversion in buffers of exactly the given sizes and keeps all that it did.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <memory>
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

/// The bytes behind the target must stay as they are.
inline Outcome convert(const VelClConverterABase& converter, std::string_view source,
                       std::size_t targetSize) {
  constexpr std::size_t kGuard = 64;
  constexpr char kUntouched = '\x5A';
  const std::unique_ptr<char[]> in(new char[source.size()]);
  std::memcpy(in.get(), source.data(), source.size());
  std::string target(targetSize + kGuard, kUntouched);
  const char* position = in.get();
  Outcome outcome;
  const std::size_t written = converter.convertBytes(target.data(), targetSize, &position, source.size());
  EXPECT_LE(written, targetSize);
  EXPECT_EQ(target.substr(targetSize), std::string(kGuard, kUntouched)) << "written behind the target";
  outcome.bytes = target.substr(0, written);
  outcome.consumed = static_cast<std::size_t>(position - in.get());
  outcome.errorId = converter.getLastError().errorId;
  outcome.errorClass = converter.getLastError().errorClass;
  return outcome;
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

inline VelClCCSID ccsid(int number) {
  return VelClCCSID(number);
}
