// The results of conversions, which run in buffers that reveal where they read and write.
#pragma once

#include <cstdint>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>

#include "base/digits.h"
#include "vel_include/vel_codepage.h"

struct Outcome {
  std::string bytes;
  std::size_t consumed = 0;
  std::uint32_t errorId = VEL_NO_ERROR;
  VelEnErrorClass errorClass = VelEnErrorClass::UNKNOWN;

  bool operator==(const Outcome&) const = default;
};

inline std::string hex(std::string_view bytes) {
  std::string text;
  for (const char c : bytes) text.append(vel::hexPair(static_cast<unsigned char>(c)).data(), 2);
  return text;
}

/// Lets GoogleTest print outcomes that differ.
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

/// Runs `conversion(position, target)`, which moves the position past the bytes that it has read and returns
/// the number of bytes written, on a block of exactly the source's size. Bytes after the target's room must
/// not change.
template <typename Conversion>
Outcome runInBuffers(std::string_view source, std::size_t room, Conversion conversion) {
  constexpr std::size_t kGuard = 64;
  const std::unique_ptr<char[]> in(new char[source.size()]);
  source.copy(in.get(), source.size());
  std::string target(room + kGuard, 'Z');
  const char* position = in.get();
  const std::size_t written = conversion(position, target.data());
  const bool isInside = written <= room && target.substr(room) == std::string(kGuard, 'Z') &&
                        position >= in.get() && position <= in.get() + source.size();
  if (!isInside) return {"outside of its buffers", 0};
  return {target.substr(0, written), static_cast<std::size_t>(position - in.get())};
}

inline Outcome convert(const VelClConverterABase& converter, std::string_view source, std::size_t room) {
  Outcome outcome = runInBuffers(source, room, [&](const char*& position, char* target) {
    return converter.convertBytes(target, room, &position, source.size());
  });
  outcome.errorId = converter.getLastError().errorId;
  outcome.errorClass = converter.getLastError().errorClass;
  return outcome;
}

inline VelClCCSID ccsid(int number) {
  return VelClCCSID(number);
}

/// Returns whether ICU is installed: only ICU converts 943.
inline bool hasIcu() {
  return VelClCodePage2UnicodeConverter(ccsid(943)).isSupported();
}
