// The memory of a ring in a file, as a mapped ring leaves it: its header, which trace_buffer_manager.cpp
// defines, and its bytes, which may have wrapped around.
#pragma once

#include <cstddef>

#include "foundation/allocator.h"
#include "trace/trace_window.h"

namespace vel::trace {

/// The bytes of a ring in the order in which they were written. If the ring has wrapped around, they begin
/// within a record.
struct RingImage {
  OwnedBlock bytes;
  std::size_t size = 0;
};

/// Whether the input begins as a ring does. No record begins like this.
bool isRing(TraceWindow& window);
/// Reads the ring that the input consists of. Returns false if the header contradicts itself, or the input
/// ends before the ring does. A ring may be written meanwhile; its newest bytes may be incomplete then.
bool readRing(TraceWindow& window, RingImage& image);

}  // namespace vel::trace
