// The end of a text, which is too short for a block of a vector kernel.
#pragma once

#include <cstring>

#include "codepage/kernels/kernels.h"

namespace vel::codepage {

/// A kernel, the most source bytes it may leave unconverted, and the size of an encoded NUL on either side.
struct BlockKernel {
  void (*convert)(Cursor& cursor) noexcept;
  std::size_t maxTail;
  std::size_t sourceNulSize;
  std::size_t targetNulSize;
};

/// Converts a tail of up to `kMaxSize` bytes by running the kernel on a copy that is padded with NULs, and
/// drops the characters that the NULs became. Short texts would otherwise never reach a vector. Does nothing
/// if the target may be too small.
template <std::size_t kMaxSize>
inline void convertTail(Cursor& cursor, const BlockKernel& kernel) {
  char source[kMaxSize * 2] = {};
  char target[sizeof source * 3];
  const std::size_t size = cursor.sourceSize();
  if (size == 0 || size > kMaxSize) return;
  std::memcpy(source, cursor.source, size);
  Cursor end{source, source + size + kernel.maxTail, target, target + sizeof target};
  kernel.convert(end);
  auto consumed = static_cast<std::size_t>(end.source - source);
  auto written = static_cast<std::size_t>(end.target - target);
  if (consumed > size) {
    written -= (consumed - size) / kernel.sourceNulSize * kernel.targetNulSize;
    consumed = size;
  }
  if (written > cursor.targetSize()) return;
  std::memcpy(cursor.target, target, written);
  cursor.source += consumed;
  cursor.target += written;
}

}  // namespace vel::codepage
