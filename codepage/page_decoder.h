// Code pages one character at a time: what a sequence of bytes means. Slow; who asks keeps the answers.
#pragma once

#include <cstddef>
#include <cstdint>

#include "codepage/icu_calls.h"
#include "vel_include/vel_codepage.h"

namespace vel::codepage {

inline constexpr std::size_t kMaxSequence = 4;

/// Throws VelClExceptionFatal: what ICU left undone for want of memory must not look like an answer.
[[noreturn]] void throwOutOfMemory();

/// A converter whose set-up found out all that it had to.
template <typename Converter>
class Checked : public Converter {
 public:
  explicit Checked(const VelClCCSID& ccsid) : Converter(ccsid) {
    if (this->getLastError().errorClass == VelEnErrorClass::OUT_OF_MEMORY) throwOutOfMemory();
  }
};
using CheckedToUnicode = Checked<VelClCodePage2UnicodeConverter>;
using CheckedFromUnicode = Checked<VelClUnicode2CodePageConverter>;

/// Runs one of the calls of icu_calls.h with the ICU of this process; `end` is for those that need it.
template <typename Call, typename... End>
std::size_t callIcu(Call call, const IcuConverter* converter, IcuBuffers& text, End... end) {
  const std::size_t written = call(*installedIcu(), converter, text, end...);
  if (text.status == kIcuOutOfMemory) throwOutOfMemory();
  return written;
}

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
