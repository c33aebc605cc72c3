#include "tools/veltrace/call_levels.h"

namespace vel::veltrace {
namespace {

/// Levels come from files, which may be damaged. Deeper calls count as being at this level.
constexpr std::uint32_t kDeepest = 1024;
/// The threads that are followed at once. Ending threads are not recorded, so all are forgotten together
/// when there are more.
constexpr std::size_t kMostThreads = 1U << 16;

std::uint32_t levelOf(const VelStTraceRecord& record) {
  const std::uint32_t level = record.data[0] | std::uint32_t{record.data[1]} << 8 |
                              std::uint32_t{record.data[2]} << 16 | std::uint32_t{record.data[3]} << 24;
  // A negative level: the exit of a function without its entry.
  if (level >> 31 != 0) return 0;
  return level < kDeepest ? level : kDeepest;
}

}  // namespace

void CallLevels::find(std::uint64_t number, Recent& recent) {
  if (threads_.size() >= kMostThreads) {
    threads_.clear();
    recent_ = {};
  }
  recent = {number, &threads_[number]};
}

CallLevels::State CallLevels::nextCall(Thread& thread, const VelStTraceRecord& record) {
  const std::uint32_t level = levelOf(record);
  thread.level = level;
  // Calls deeper than this level have ended, seen or not.
  const std::size_t outer =
      record.type == VelEnTraceDataType::FUNCTION_ENTRY && level != 0 ? level - 1 : level;
  State state{static_cast<std::uint32_t>(outer)};
  if (record.type == VelEnTraceDataType::FUNCTION_ENTRY) {
    thread.starts.resize(outer, {0, false});
    thread.starts.push_back({record.timeStamp, true});
  } else {
    if (outer < thread.starts.size() && thread.starts[outer].isKnown) {
      state.hasDuration = true;
      state.durationMs = record.timeStamp - thread.starts[outer].timeMs;
    }
    if (thread.starts.size() > outer) thread.starts.resize(outer);
  }
  return state;
}

}  // namespace vel::veltrace
