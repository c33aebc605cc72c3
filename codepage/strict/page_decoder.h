// Code pages one character at a time: what a sequence of bytes means. Slow; who asks keeps the answers.
#pragma once

#include <cstddef>
#include <cstdint>

#include "vel_include/vel_codepage.h"

namespace vel::codepage {

inline constexpr std::size_t kMaxSequence = 4;

struct DecodeResult {
  enum class Kind : std::uint8_t {
    Unknown,
    Units,             ///< a character, or some
    Invalid,           ///< no character; these bytes belong together
    InvalidFirstByte,  ///< no character; what begins behind the first byte is another matter
    Prefix             ///< the beginning of a longer sequence
  };
  Kind kind = Kind::Unknown;
  std::uint8_t count = 0;  ///< of units
  char16_t units[4] = {};
};

class PageDecoder {
 public:
  virtual ~PageDecoder() = default;

  /// A byte outside of double-byte mode.
  virtual DecodeResult decodeSingle(unsigned char byte) = 0;
  /// More bytes that begin with a prefix; up to kMaxSequence.
  virtual DecodeResult decodeSequence(const unsigned char* bytes, std::size_t size) = 0;
  /// Two bytes in double-byte mode.
  virtual DecodeResult decodePair(unsigned char lead, unsigned char trail) = 0;
  /// Whether 0E and 0F change the mode.
  virtual bool hasShifts() const = 0;
  /// Whether shifts into the mode that there is already are no characters.
  virtual bool ignoresRedundantShifts() const = 0;
};

/// By what the converter uses, ICU or a table; the converter must live as long as the result, which the
/// caller destroys.
PageDecoder* makePageDecoder(const VelClCodePage2UnicodeConverter& converter);

}  // namespace vel::codepage
