// ICU's converter of one code page, as strict conversion uses it: pieces and whole texts in both directions.
// Hides ICU's statuses; throws when ICU runs out of memory.
#pragma once

#include <cstddef>

#include "vel_include/vel_codepage.h"

namespace vel::codepage {

/// Throws VelClExceptionFatal: the output of a conversion that ICU ended for lack of memory is not a result.
[[noreturn]] void throwIcuOutOfMemory();

/// Every member but the constructor throws VelClExceptionFatal when ICU runs out of memory.
class IcuPageCodec {
 public:
  /// Works with the ICU converter of `converter`, which must live as long as the codec. If `converter` does
  /// not use ICU, no other member may be called.
  explicit IcuPageCodec(const VelClConverterABase& converter);

  struct DecodedPiece {
    std::size_t units;
    bool isValid;  ///< false after an error of ICU, also if `units` is full; substituting is not an error
  };
  /// Decodes the next bytes of a text. ICU keeps units that do not fit for the next call. It keeps an
  /// incomplete character, too, unless `flush`, which makes it an error.
  DecodedPiece decodePiece(const char* bytes, std::size_t size, char16_t* units, std::size_t capacity,
                           bool flush) const;

  struct EncodedPiece {
    std::size_t size;
    bool isFull;  ///< bytes are left in ICU that did not fit: call again with what is left of the units
  };
  /// Encodes the next units of a text and moves `units` past those consumed. `flush` closes shifts.
  EncodedPiece encodePiece(const char16_t*& units, const char16_t* unitsEnd, char* bytes,
                           std::size_t capacity, bool flush) const;

  /// Convert a whole text and return the number of units or bytes written. Output that does not fit is
  /// discarded; calls are independent of each other.
  std::size_t decode(const char* bytes, std::size_t size, char16_t* units, std::size_t capacity) const;
  std::size_t encode(const char16_t* units, std::size_t count, char* bytes, std::size_t capacity) const;

 private:
  const void* converter_;
};

}  // namespace vel::codepage
