// Reads a code page strictly: bytes become UCS-2 with whole pairs, as far as there is no fault.
#pragma once

#include <cstddef>
#include <cstdint>

#include "vel_include/vel_strict_conversion.h"

namespace vel::codepage {

using Fault = VelClStrictConversion::VelEnFault;

/// How far a reader came.
struct ReadResult {
  std::size_t consumed = 0;
  std::size_t units = 0;
  Fault fault = Fault::NONE;  ///< of what follows
  std::size_t faultSize = 0;
};

class Reader {
 public:
  /// At least so many units of room does a reader need to get on.
  static constexpr std::size_t kMinCapacity = 8;

  virtual ~Reader() = default;

  /// Stops before a fault, before a character that is not all there unless this is the last of the source,
  /// and when the room ends. The bytes of a fault are the caller's to pass over.
  virtual ReadResult read(const char* source, std::size_t size, bool isLast, char16_t* units,
                          std::size_t capacity) = 0;
  /// How many bytes of the last result's source stand before the character that begins at a unit.
  virtual std::size_t sizeBefore(const char* source, std::size_t size, std::size_t unit) const = 0;
  virtual void restart() {}
};

/// Returns the reader of a code page, or of a form of Unicode; the caller destroys it. Null when the source
/// cannot be converted.
Reader* makeReader(const VelClCCSID& source);

}  // namespace vel::codepage
