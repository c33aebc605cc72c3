// The interface of strict readers. A reader converts bytes to UTF-16 and stops at the first fault, which it
// describes; counting, reporting and replacing faults is strict_conversion.cpp's work.
#pragma once

#include <cstddef>
#include <cstdint>

#include "vel_include/vel_strict_conversion.h"

namespace vel::codepage {

using Fault = VelClStrictConversion::VelEnFault;

/// The result of one read: what was converted, and the fault that follows it.
struct ReadResult {
  std::size_t consumed = 0;
  std::size_t units = 0;
  Fault fault = Fault::NONE;  ///< of the bytes after `consumed`
  std::size_t faultSize = 0;  ///< in bytes; 0 for a text that ends in double-byte mode
};

class Reader {
 public:
  /// The least `capacity` with which read() always makes progress.
  static constexpr std::size_t kMinCapacity = 8;

  virtual ~Reader() = default;

  /// Converts bytes to whole characters in `units`. Stops before an ill-formed sequence, before a truncated
  /// character (a fault if `isLast`, otherwise kept by the caller), and when `units` is full. The caller
  /// skips the faulty bytes.
  virtual ReadResult read(const char* source, std::size_t size, bool isLast, char16_t* units,
                          std::size_t capacity) = 0;
  /// Returns the number of bytes before the character whose first unit is `unit`, for the source of the last
  /// read(). May decode that source again.
  virtual std::size_t sizeBefore(const char* source, std::size_t size, std::size_t unit) const = 0;
  /// Forgets the shift state, before another text.
  virtual void restart() {}
};

/// Returns a new reader of a code page or a form of Unicode, or null if the source cannot be converted. The
/// caller destroys the reader.
Reader* makeReader(const VelClCCSID& source);

}  // namespace vel::codepage
