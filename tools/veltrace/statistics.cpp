#include "tools/veltrace/statistics.h"

#include <algorithm>

#include "tools/veltrace/event_writer.h"
#include "tools/veltrace/text_writer.h"

namespace vel::veltrace {
namespace {

/// The rate over time has at most this many lines; then intervals are doubled.
constexpr std::size_t kMostIntervals = 40;

/// A line of cells, aligned on the right.
class Line {
 public:
  Line& cell(std::size_t width, std::string_view text) {
    if (!text_.empty()) text_ += ' ';
    if (text.size() < width) text_.append(width - text.size(), ' ');
    text_ += text;
    return *this;
  }
  Line& cell(std::size_t width, std::uint64_t number) { return cell(width, std::to_string(number)); }
  /// A time in seconds with three decimals.
  Line& time(std::size_t width, std::uint32_t timeMs) {
    const std::string decimals = std::to_string(1000 + timeMs % 1000);
    return cell(width, std::to_string(timeMs / 1000) + '.' + decimals.substr(1));
  }
  /// The last cell, aligned on the left: a text from a trace.
  Line& name(std::string_view name) {
    std::string safe(4 * name.size() + 8, '\0');
    safe.resize(static_cast<std::size_t>(writeSafely(safe.data(), name) - safe.data()));
    return cell(0, safe);
  }
  void writeTo(tools::OutputBuffer& output) {
    text_ += '\n';
    output.append(text_.data(), text_.size());
  }

 private:
  std::string text_;
};

constexpr std::size_t kWide = 14, kNarrow = 10;

/// Writes the rows of a table, those with the most records first. `addName` adds a cell, or text at the end.
template <typename Map, typename AddName>
void writeTable(tools::OutputBuffer& output, std::string_view title, const Map& map, AddName addName) {
  Line().cell(0, "").writeTo(output);
  Line().cell(kNarrow, "RECORDS").cell(kWide, "BYTES").cell(0, title).writeTo(output);
  std::vector<const typename Map::value_type*> rows;
  for (const auto& row : map) rows.push_back(&row);
  std::ranges::stable_sort(
      rows, [](const auto* a, const auto* b) { return a->second.records > b->second.records; });
  for (const auto* row : rows) {
    Line line;
    line.cell(kNarrow, row->second.records).cell(kWide, row->second.bytes);
    addName(line, row->first);
    line.writeTo(output);
  }
}

}  // namespace

void Statistics::count(Table& table, std::string_view name, const VelStTraceRecord& record) {
  auto row = table.find(name);
  if (row == table.end()) row = table.emplace(name, Count()).first;
  ++row->second.records;
  row->second.bytes += record.size;
}

void Statistics::count(std::map<std::uint64_t, Count>& table, std::uint64_t number,
                       const VelStTraceRecord& record) {
  Count& row = table[number];
  ++row.records;
  row.bytes += record.size;
}

void Statistics::add(const Event& event) {
  const VelStTraceRecord& record = *event.record;
  countTime(record.timeStamp);
  ++all_.records;
  all_.bytes += record.size;
  count(processes_, record.processId, record);
  count(threads_, std::uint64_t{record.processId} << 32 | record.threadId, record);
  count(components_, record.componentId, record);
  count(details_, detailName(record.detail), record);
  count(types_, velTraceGetTypeName(record.type), record);
  if (event.isEntry() || event.isExit()) addCall(event);
}

void Statistics::addSkipped(std::uint64_t bytes, std::uint64_t places) {
  skippedBytes_ += bytes;
  skippedPlaces_ += places;
}

/// Times before the first one count as the first.
void Statistics::countTime(std::uint32_t time) {
  if (all_.records == 0) firstMs_ = lastMs_ = time;
  const auto sinceFirst = static_cast<std::int32_t>(time - firstMs_);
  if (static_cast<std::int32_t>(time - lastMs_) > 0) lastMs_ = time;
  std::size_t interval = static_cast<std::uint32_t>(std::max(sinceFirst, 0)) / intervalMs_;
  while (interval >= kMostIntervals) {
    for (std::size_t i = 0; i < intervals_.size(); ++i)
      intervals_[i / 2] = (i % 2 == 0 ? 0 : intervals_[i / 2]) + intervals_[i];
    intervals_.resize((intervals_.size() + 1) / 2);
    intervalMs_ *= 2;
    interval /= 2;
  }
  if (intervals_.size() <= interval) intervals_.resize(interval + 1);
  ++intervals_[interval];
}

void Statistics::addCall(const Event& event) {
  std::vector<Call>& calls = calls_[{event.record->processId, event.record->threadId}];
  const std::uint32_t now = event.record->timeStamp;
  if (event.isEntry()) {
    auto function = functions_.find(event.function);
    if (function == functions_.end()) function = functions_.emplace(event.function, Function()).first;
    ++function->second.calls;
    calls.resize(event.level, {nullptr, 0, 0});
    calls.push_back({&*function, now, 0});
    return;
  }
  if (calls.size() <= event.level) return;
  calls.resize(event.level + std::size_t{1});
  const Call call = calls.back();
  calls.pop_back();
  if (call.function == nullptr) return;
  const std::uint32_t duration = now - call.startMs;
  Function& function = call.function->second;
  function.totalMs += duration;
  function.selfMs += duration - std::min<std::uint64_t>(call.innerMs, duration);
  function.longestMs = std::max(function.longestMs, duration);
  if (!calls.empty()) calls.back().innerMs += duration;
}

void Statistics::write(tools::OutputBuffer& output) const {
  writeTotals(output);
  if (all_.records == 0) return;
  writeRate(output);
  const auto addNumber = [](Line& line, std::uint64_t number) { line.cell(0, number); };
  const auto addThread = [](Line& line, std::uint64_t thread) {
    line.cell(0, thread & UINT32_MAX).cell(0, "of process").cell(0, thread >> 32);
  };
  const auto addText = [](Line& line, const std::string& text) { line.name(text); };
  writeTable(output, "PROCESS", processes_, addNumber);
  writeTable(output, "THREAD", threads_, addThread);
  writeTable(output, "COMPONENT", components_, addNumber);
  writeTable(output, "DETAIL", details_, addText);
  writeTable(output, "TYPE", types_, addText);
  if (!functions_.empty()) writeFunctions(output);
}

void Statistics::writeTotals(tools::OutputBuffer& output) const {
  const std::pair<const char*, std::uint64_t> totals[] = {{"records", all_.records},
                                                          {"bytes", all_.bytes},
                                                          {"bytes skipped", skippedBytes_},
                                                          {"in places", skippedPlaces_}};
  for (const auto& [name, number] : totals) Line().cell(kWide, number).cell(0, name).writeTo(output);
  if (all_.records == 0) return;
  const std::pair<const char*, std::uint32_t> times[] = {{"seconds, first record", firstMs_},
                                                         {"seconds, last record", lastMs_},
                                                         {"seconds between them", lastMs_ - firstMs_}};
  for (const auto& [name, time] : times) Line().time(kWide, time).cell(0, name).writeTo(output);
}

void Statistics::writeRate(tools::OutputBuffer& output) const {
  Line().cell(0, "").writeTo(output);
  Line().cell(kNarrow, "RECORDS").cell(kWide, "PER SECOND").cell(0, "FROM").writeTo(output);
  for (std::size_t i = 0; i < intervals_.size(); ++i)
    Line()
        .cell(kNarrow, intervals_[i])
        .cell(kWide, intervals_[i] * 1000 / intervalMs_)
        .time(0, static_cast<std::uint32_t>(firstMs_ + i * intervalMs_))
        .writeTo(output);
}

/// Functions that take the most time themselves come first.
void Statistics::writeFunctions(tools::OutputBuffer& output) const {
  Line().cell(0, "").writeTo(output);
  Line()
      .cell(kNarrow, "CALLS")
      .cell(kWide, "TOTAL MS")
      .cell(kWide, "SELF MS")
      .cell(kWide, "LONGEST MS")
      .cell(0, "FUNCTION")
      .writeTo(output);
  std::vector<const Functions::value_type*> rows;
  for (const auto& row : functions_) rows.push_back(&row);
  std::ranges::stable_sort(rows, [](const auto* a, const auto* b) {
    return std::pair(a->second.selfMs, a->second.calls) > std::pair(b->second.selfMs, b->second.calls);
  });
  for (const auto* row : rows) {
    const Function& function = row->second;
    Line()
        .cell(kNarrow, function.calls)
        .cell(kWide, function.totalMs)
        .cell(kWide, function.selfMs)
        .cell(kWide, function.longestMs)
        .name(row->first)
        .writeTo(output);
  }
}

}  // namespace vel::veltrace
