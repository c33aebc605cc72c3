// A record with what the traces around it say about it.
#pragma once

#include <cstdint>
#include <string_view>

#include "vel_include/vel_trace_reader.h"

namespace vel::veltrace {

/// Valid until the next record of its trace is read.
struct Event {
  const VelStTraceRecord* record = nullptr;
  std::string_view file, function, message;
  std::uint32_t level = 0;       ///< calls that this event is within
  std::uint32_t durationMs = 0;  ///< of the call that ends
  bool hasDuration = false;      ///< the call that ends was seen to begin

  bool isEntry() const { return record->type == VelEnTraceDataType::FUNCTION_ENTRY; }
  bool isExit() const { return record->type == VelEnTraceDataType::FUNCTION_EXIT; }
  std::string_view data() const { return {reinterpret_cast<const char*>(record->data), record->dataSize}; }
};

}  // namespace vel::veltrace
