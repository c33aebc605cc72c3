#include "tools/veltrace/merged_traces.h"

#include <algorithm>

#include "platform/clocks.h"

namespace vel::veltrace {
namespace {

constexpr std::uint32_t kPollMs = 20;

/// Compares times of a clock that wraps.
bool isBefore(const VelStTraceRecord& a, const VelStTraceRecord& b) {
  return static_cast<std::int32_t>(a.timeStamp - b.timeStamp) < 0;
}

}  // namespace

VelClStatus MergedTraces::open(const char* file, const char* shownName, std::uint32_t reading) {
  Trace& trace = traces_.emplace_back();
  trace.name = shownName;
  VelClStatus status = trace.reader.open(file == nullptr ? "-" : file, reading);
  if (!status.isOk()) traces_.pop_back();
  return status;
}

Trace* MergedTraces::next() {
  if (traces_.size() == 1) return advance(traces_.front()) ? &traces_.front() : nullptr;
  if (!isStarted_) {
    std::ranges::for_each(traces_, [](Trace& trace) { advance(trace); });
    isStarted_ = true;
  } else if (current_ != nullptr) {
    advance(*current_);
  }
  current_ = nullptr;
  for (Trace& trace : traces_)
    if (trace.record != nullptr && (current_ == nullptr || isBefore(*trace.record, *current_->record)))
      current_ = &trace;
  return current_;
}

bool MergedTraces::wait(std::uint32_t milliseconds) {
  while (true) {
    bool hasMore = false;
    for (Trace& trace : traces_) {
      if (!trace.reader.wait(0)) continue;
      hasMore = true;
      if (traces_.size() > 1 && trace.record == nullptr) advance(trace);
    }
    if (hasMore) {
      // With several traces, next() reads where a record has been used; none is in use now.
      current_ = nullptr;
      return true;
    }
    if (milliseconds == 0) return false;
    const std::uint32_t step = std::min(milliseconds, kPollMs);
    platform::sleepMilliseconds(step);
    milliseconds -= step;
  }
}

}  // namespace vel::veltrace
