// Runs kernels as conversions.
#pragma once

#include <vector>

#include "codepage/kernels/kernels.h"
#include "codepage/test/outcome.h"

/// Returns the levels that this processor supports, the best one first and the portable one last.
inline std::vector<vel::codepage::KernelLevel> supportedLevels() {
  std::vector<vel::codepage::KernelLevel> levels;
  for (const vel::codepage::KernelLevel& level : vel::codepage::vectorLevels())
    if (level.isSupported()) levels.push_back(level);
  levels.push_back({"portable", &vel::codepage::kPortableKernels, nullptr});
  return levels;
}

template <typename Loop>
Outcome runKernel(Loop loop, std::string_view source, std::size_t room) {
  return runInBuffers(source, room, [&](const char*& position, char* target) {
    vel::codepage::Cursor cursor{position, position + source.size(), target, target + room};
    loop(cursor);
    position = cursor.source;
    return static_cast<std::size_t>(cursor.target - target);
  });
}

/// Runs the kernel for mixed bytes of this kind of table.
inline Outcome runMixed(const vel::codepage::Kernels& kernels, const VelStDoubleByteTable& table,
                        std::string_view source, std::size_t room, bool& isDouble) {
  isDouble = false;
  return runKernel(
      [&](vel::codepage::Cursor& cursor) {
        if (table.isEbcdic != 0)
          kernels.decodeShifted(cursor, table, isDouble);
        else
          kernels.decodeMixed(cursor, table);
      },
      source, room);
}
