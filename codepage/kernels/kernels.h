// Kernels: the inner loops of conversions, which vectors make faster. There is a set for each level of
// instructions, all with the same results: portable C++, SSE4.1, AVX2, and AVX-512 with VBMI2. kernels()
// chooses the best level that the processor and the operating system support, once per process; the variable
// VEL_KERNELS can name a lower one.
//
// The kernels that convert only a prefix report no errors. They convert what is easy and fast, with the
// results that the caller's own code defines, and the caller converts the rest character by character.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "vel_include/vel_codepage.h"

namespace vel::codepage {

/// The rest of a source, and of the target for it. Kernels advance `source` and `target`.
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

/// Returns a mask of the lowest `count` of 64 bits; more are all of them.
constexpr std::uint64_t lowest(std::size_t count) noexcept {
  return count < 64 ? (1ULL << count) - 1 : ~0ULL;
}

struct Kernels {
  /// Zero-extends `count` bytes to units.
  void (*widen)(char* target, const char* source, std::size_t count) noexcept;
  /// Truncates `count` units to their low bytes.
  void (*narrow)(char* target, const char* source, std::size_t count) noexcept;
  /// Swaps the bytes of `count` units.
  void (*swap)(char* target, const char* source, std::size_t count) noexcept;
  /// Writes the unit that `table` has, in host order, for each of `size` bytes.
  void (*lookUpBytes)(char* target, const char* source, std::size_t size,
                      const std::uint16_t* table) noexcept;
  /// Convert a prefix that ends on a character boundary, UTF-8 to UCS-2 and back. They may stop when less
  /// than one block of source or target is left, and always stop before a character that is left to the
  /// caller, such as an ill-formed one. Target bytes past the last unit written may be clobbered, up to
  /// `targetEnd`.
  void (*decodeUtf8)(Cursor& cursor) noexcept;
  void (*encodeUtf8)(Cursor& cursor) noexcept;
  /// Converts a prefix of mixed single and double bytes to UCS-2. Stops like decodeUtf8, never within a pair.
  void (*decodeMixed)(Cursor& cursor, const VelStDoubleByteTable& table) noexcept;
  /// Converts a prefix of text with shifts, converting NEL (U+0085) to LF. `isDouble` is the mode at its
  /// start and is set to the one at its end.
  void (*decodeShifted)(Cursor& cursor, const VelStDoubleByteTable& table, bool& isDouble) noexcept;
  /// Maps `count` units to bytes by a table with the layout of velGetUCS2toSBCSTable: the first 256 bytes map
  /// the high byte of a unit to the number of the 256-byte page in which its low byte is looked up.
  void (*mapUnits)(char* target, const char* source, std::size_t count, const unsigned char* table) noexcept;
};

struct KernelLevel {
  const char* name;
  const Kernels* kernels;
  bool (*isSupported)() noexcept;  ///< by the processor and the operating system
};

/// The kernels of portable C++, for every processor.
extern const Kernels kPortableKernels;

/// Returns the levels with vectors that this processor's architecture has, the best one first.
std::span<const KernelLevel> vectorLevels() noexcept;

/// Returns the level that is in use: of those that are supported, the one that VEL_KERNELS names when this is
/// first called, or the best one if there is no such level.
const KernelLevel& kernelLevel() noexcept;

/// Returns the kernels of that level.
const Kernels& kernels() noexcept;

}  // namespace vel::codepage
