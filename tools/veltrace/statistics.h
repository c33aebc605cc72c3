// Counts records: in all, over time, by what they have in common, and by function.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/output_buffer.h"
#include "tools/veltrace/event.h"

namespace vel::veltrace {

class Statistics {
 public:
  void add(const Event& event);
  /// Bytes that belong to no record, and in how many places.
  void addSkipped(std::uint64_t bytes, std::uint64_t places);
  void write(tools::OutputBuffer& output) const;

 private:
  struct Count {
    std::uint64_t records = 0, bytes = 0;
  };
  using Table = std::map<std::string, Count, std::less<>>;
  struct Function {
    std::uint64_t calls = 0, totalMs = 0, selfMs = 0;
    std::uint32_t longestMs = 0;
  };
  using Functions = std::map<std::string, Function, std::less<>>;
  struct Call {
    Functions::value_type* function;  ///< null if its entry was not seen
    std::uint32_t startMs;
    std::uint64_t innerMs;  ///< in the calls that it made
  };
  using Thread = std::pair<std::uint32_t, std::uint32_t>;

  static void count(Table& table, std::string_view name, const VelStTraceRecord& record);
  static void count(std::map<std::uint64_t, Count>& table, std::uint64_t number,
                    const VelStTraceRecord& record);
  void countTime(std::uint32_t time);
  void addCall(const Event& event);
  void writeTotals(tools::OutputBuffer& output) const;
  void writeRate(tools::OutputBuffer& output) const;
  void writeFunctions(tools::OutputBuffer& output) const;

  Count all_;
  std::uint64_t skippedBytes_ = 0, skippedPlaces_ = 0;
  std::uint32_t firstMs_ = 0, lastMs_ = 0;
  std::uint32_t intervalMs_ = 100;
  std::vector<std::uint64_t> intervals_;
  std::map<std::uint64_t, Count> processes_, threads_, components_;
  Table details_, types_;
  Functions functions_;
  std::map<Thread, std::vector<Call>> calls_;
};

}  // namespace vel::veltrace
