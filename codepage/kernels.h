// The inner loops that processors with wide vectors do faster. A portable loop defines the result of each;
// both kinds are in one table, and the processor decides once which one is used.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vel::codepage {

/// A text on its way from one encoding to the other. Loops move the starts of both.
struct Progress {
  const char* source;
  const char* sourceEnd;
  char* target;
  char* targetEnd;

  std::size_t sourceSize() const noexcept { return static_cast<std::size_t>(sourceEnd - source); }
  std::size_t targetSize() const noexcept { return static_cast<std::size_t>(targetEnd - target); }
};

struct Kernels {
  /// Writes the table's unit for each of `size` bytes, low byte first; U+0085 as U+000A if that is asked for.
  /// The table's units have the high byte first.
  void (*lookUpBytes)(char* target, const char* source, std::size_t size, const std::uint16_t* table,
                      bool foldsNextLine) noexcept;
  /// UTF-8 to UCS-2, and back, for a while: from the start of a character on, and stopping at the start of
  /// one, at the latest before one that is not well-formed, or where source or target are nearly at their
  /// ends. What is behind the last unit written may be overwritten, too, up to the target's end.
  void (*decodeUtf8)(Progress& progress) noexcept;
  void (*encodeUtf8)(Progress& progress) noexcept;
};

extern const Kernels kPortableKernels;

/// Those with AVX-512 (VBMI2), null where the processor or its operating system lacks it.
const Kernels* vectorKernels() noexcept;

/// The best ones here.
const Kernels& kernels() noexcept;

}  // namespace vel::codepage
