// Several traces as one: their records in the order of time. Records of one trace keep their order, so that
// no more than one record of each trace is held.
#pragma once

#include <cstdint>
#include <deque>
#include <string>

#include "tools/veltrace/call_levels.h"
#include "tools/veltrace/event.h"

namespace vel::veltrace {

struct Trace {
  std::string name;  ///< as messages show it
  VelClTraceReader reader;
  CallLevels levels;
  const VelStTraceRecord* record = nullptr;
  std::uint64_t reportedRestarts = 0;
};

class MergedTraces {
 public:
  /// Opens a trace; null is standard input.
  VelClStatus open(const char* file, const char* shownName, std::uint32_t reading);

  /// Reads the next record of all traces, or returns null. Its trace is valid until the next call.
  Trace* next();
  /// Waits for more of the traces, which are followed; returns whether there may be.
  bool wait(std::uint32_t milliseconds);

  std::deque<Trace>& all() { return traces_; }

 private:
  static bool advance(Trace& trace) {
    trace.record = trace.reader.next() ? trace.reader.getRecord() : nullptr;
    return trace.record != nullptr;
  }

  std::deque<Trace> traces_;
  Trace* current_ = nullptr;
  bool isStarted_ = false;
};

}  // namespace vel::veltrace
