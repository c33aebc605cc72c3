// Follows the calls of each thread: how deep they nest, and how long each one takes.
//
// Function records contain the nesting level after them, so a level is known again with the next function
// record of the thread, even if records are missing.
#pragma once

#include <array>
#include <cstdint>
#include <unordered_map>
#include <vector>

#include "vel_include/vel_trace_reader.h"

namespace vel::veltrace {

class CallLevels {
 public:
  struct State {
    std::uint32_t level = 0;       ///< calls that the record is within
    std::uint32_t durationMs = 0;  ///< of the call that ends with the record
    bool hasDuration = false;
  };

  /// Call it for every record of a trace, in order.
  State next(const VelStTraceRecord& record) {
    const std::uint64_t number = std::uint64_t{record.processId} << 32 | record.threadId;
    Recent& recent = recent_[(record.threadId ^ record.processId) % kRecent];
    if (recent.thread == nullptr || recent.number != number) find(number, recent);
    const bool isFunction =
        record.type == VelEnTraceDataType::FUNCTION_ENTRY || record.type == VelEnTraceDataType::FUNCTION_EXIT;
    return isFunction ? nextCall(*recent.thread, record) : State{recent.thread->level};
  }

 private:
  struct Start {
    std::uint32_t timeMs;
    bool isKnown;
  };
  struct Thread {
    std::uint32_t level = 0;
    std::vector<Start> starts;  ///< of the calls, by level
  };

  /// A thread that was used lately, for its number.
  struct Recent {
    std::uint64_t number = 0;
    Thread* thread = nullptr;
  };
  static constexpr std::size_t kRecent = 64;

  void find(std::uint64_t number, Recent& recent);
  static State nextCall(Thread& thread, const VelStTraceRecord& record);

  std::unordered_map<std::uint64_t, Thread> threads_;
  std::array<Recent, kRecent> recent_;
};

}  // namespace vel::veltrace
