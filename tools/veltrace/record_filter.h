// Decides which records are shown. What the numbers of a record decide is checked first, because its texts
// must be decoded before they can be compared.
#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/veltrace/event.h"
#include "tools/veltrace/text_pattern.h"

namespace vel::veltrace {

/// A list of numbers and ranges, such as "1,5-9".
class NumberList {
 public:
  /// Returns false for an invalid list, with the position from 1. Numbers are decimal and at most `largest`.
  bool parse(std::string_view text, std::uint32_t largest, std::size_t& position);
  /// The smallest number and the largest one of the list.
  std::pair<std::uint32_t, std::uint32_t> bounds() const {
    if (ranges_.empty()) return {0, UINT32_MAX};
    auto bounds = ranges_[0];
    for (const auto& [low, high] : ranges_)
      bounds = {std::min(bounds.first, low), std::max(bounds.second, high)};
    return bounds;
  }
  bool matches(std::uint32_t number) const {
    if (ranges_.empty()) return true;
    for (const auto& [low, high] : ranges_)
      if (number - low <= high - low) return true;
    return false;
  }

 private:
  std::vector<std::pair<std::uint32_t, std::uint32_t>> ranges_;
};

/// Parses a number up to `largest`. Returns 0, or the position from 1 where the text is invalid.
std::size_t parseNumber(std::string_view text, std::uint32_t largest, std::uint32_t& number);

/// Parses a time in seconds with up to three decimals, as it is shown, into milliseconds. Returns false with
/// the position from 1.
bool parseTime(std::string_view text, std::uint32_t& milliseconds, std::size_t& position);

struct RecordFilter {
  NumberList processes, threads, components;
  VelEnTraceDetail detail = VelEnTraceDetail::HIGH;
  TextPattern function, message;
  std::string data;  ///< bytes that the data must contain
  std::uint32_t fromMs = 0;
  std::uint32_t toMs = UINT32_MAX;
  std::uint32_t longerMs = 0;  ///< only calls that take longer
  bool onlyLonger = false;

  /// Contains all records that match, and others.
  VelStTraceSelection selection() const;
  /// What can be decided without texts and levels.
  bool matches(const VelStTraceRecord& record) const {
    return record.detail <= detail && record.timeStamp >= fromMs && record.timeStamp <= toMs &&
           processes.matches(record.processId) && threads.matches(record.threadId) &&
           components.matches(record.componentId) && (data.empty() || containsData(record));
  }
  /// The rest, for a record that matches.
  bool matches(const Event& event) const {
    if (onlyLonger && (!event.hasDuration || event.durationMs <= longerMs)) return false;
    return (!function.isSet() || function.matches(event.function)) &&
           (!message.isSet() || message.matches(event.message));
  }

 private:
  bool containsData(const VelStTraceRecord& record) const;
};

}  // namespace vel::veltrace
