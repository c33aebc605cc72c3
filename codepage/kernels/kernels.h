// The inner loops that processors with wide vectors do faster. A portable loop defines the result of each;
// both kinds are in one table, and the processor decides once which one is used.
#pragma once

#include <cstddef>
#include <cstdint>

#include "vel_include/vel_codepage.h"

namespace vel::codepage {

/// A text on its way from one encoding to the other. Loops move the starts of both.
struct Cursor {
  const char* source;
  const char* sourceEnd;
  char* target;
  char* targetEnd;

  std::size_t sourceSize() const noexcept { return static_cast<std::size_t>(sourceEnd - source); }
  std::size_t targetSize() const noexcept { return static_cast<std::size_t>(targetEnd - target); }
};

inline Cursor cursorOf(const VelClConverterABase::_VelStConverter& call) noexcept {
  return {*call.source, *call.source + call.sourceSize, call.target, call.target + call.targetSize};
}

struct Kernels {
  /// Bytes to units, units to their low bytes, and units to those of the other byte order: `count` of them.
  void (*widen)(char* target, const char* source, std::size_t count) noexcept;
  void (*narrow)(char* target, const char* source, std::size_t count) noexcept;
  void (*swap)(char* target, const char* source, std::size_t count) noexcept;
  /// Writes the table's unit for each of `size` bytes.
  void (*lookUpBytes)(char* target, const char* source, std::size_t size,
                      const std::uint16_t* table) noexcept;
  /// UTF-8 to UCS-2, and back, for a while: from the start of a character on, and stopping at the start of
  /// one, at the latest before one that is not well-formed, or where source or target are nearly at their
  /// ends. What is behind the last unit written may be overwritten, too, up to the target's end.
  void (*decodeUtf8)(Cursor& cursor) noexcept;
  void (*encodeUtf8)(Cursor& cursor) noexcept;
  /// Mixed single and double bytes to UCS-2 for a while, in the same way; never ends within a pair.
  void (*decodeMixed)(Cursor& cursor, const VelStDoubleByteTable& table) noexcept;
  /// The same with shifts. `isDouble` is the mode at the start, and then the one at the end.
  void (*decodeShifted)(Cursor& cursor, const VelStDoubleByteTable& table, bool& isDouble) noexcept;
};

extern const Kernels kPortableKernels;

/// Those with AVX-512 (VBMI2), null where the processor or its operating system lacks it.
const Kernels* vectorKernels() noexcept;

/// The best ones here.
const Kernels& kernels() noexcept;

}  // namespace vel::codepage
