// Runs inner loops as conversions.
#pragma once

#include <vector>

#include "codepage/kernels.h"
#include "codepage/test/outcome.h"

/// All that this processor has the instructions for.
inline std::vector<const vel::codepage::Kernels*> kernelTables() {
  std::vector<const vel::codepage::Kernels*> tables{&vel::codepage::kPortableKernels};
  if (vel::codepage::vectorKernels() != nullptr) tables.push_back(vel::codepage::vectorKernels());
  return tables;
}

template <typename Loop>
Outcome runLoop(Loop loop, std::string_view source, std::size_t room) {
  return runInBuffers(source, room, [&](const char*& position, char* target) {
    vel::codepage::Progress progress{position, position + source.size(), target, target + room};
    loop(progress);
    position = progress.source;
    return static_cast<std::size_t>(progress.target - target);
  });
}

/// What the loops for mixed bytes do.
inline Outcome runMixed(const vel::codepage::Kernels& kernels, const VelStDoubleByteTable& table,
                        std::string_view source, std::size_t room, bool& isDouble) {
  isDouble = false;
  return runLoop(
      [&](vel::codepage::Progress& progress) {
        if (table.isEbcdic != 0)
          kernels.decodeShifted(progress, table, isDouble);
        else
          kernels.decodeMixed(progress, table);
      },
      source, room);
}
