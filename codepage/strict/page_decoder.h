// Decodes one character of a code page at a time, by the table or the ICU converter that its converter uses.
// Slow: callers cache the results.
#pragma once

#include <cstddef>
#include <cstdint>

#include "vel_include/vel_codepage.h"

namespace vel::codepage {

/// The most bytes that a character has in any code page.
inline constexpr std::size_t kMaxSequence = 4;

/// The result of decoding a sequence of bytes.
struct DecodeResult {
  enum class Kind : std::uint8_t {
    Unknown,           ///< not decoded yet
    Units,             ///< one character, or several
    Invalid,           ///< unmapped or ill-formed; all of the bytes are consumed
    InvalidFirstByte,  ///< ill-formed; only the first byte is consumed, decoding resumes at the second
    Prefix             ///< the beginning of a longer sequence
  };
  Kind kind = Kind::Unknown;
  std::uint8_t count = 0;  ///< the number of units
  char16_t units[4] = {};
};

class PageDecoder {
 public:
  virtual ~PageDecoder() = default;

  /// Decodes a byte in single-byte mode.
  virtual DecodeResult decodeSingle(unsigned char byte) = 0;
  /// Decodes 2 to kMaxSequence bytes whose first `size` - 1 are a prefix.
  virtual DecodeResult decodeSequence(const unsigned char* bytes, std::size_t size) = 0;
  /// Decodes a pair in double-byte mode.
  virtual DecodeResult decodePair(unsigned char lead, unsigned char trail) = 0;
  /// Whether shift-out (0E) and shift-in (0F) change the mode.
  virtual bool hasShifts() const = 0;
  /// Whether a redundant shift (shift-out in double-byte mode, shift-in in single-byte mode) is ignored;
  /// otherwise it is a character.
  virtual bool ignoresRedundantShifts() const = 0;
};

/// Returns the decoder of the converter's source; the caller destroys it. The converter must use a table or
/// ICU, and live as long as the decoder.
PageDecoder* makePageDecoder(const VelClCodePage2UnicodeConverter& converter);

}  // namespace vel::codepage
