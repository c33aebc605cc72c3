#include "tools/veltrace/record_filter.h"

#include <charconv>
#include <tuple>

namespace vel::veltrace {
namespace {

/// Parses a number at the start of the text and removes it. Returns false unless there is one up to
/// `largest`.
bool takeNumber(std::string_view& text, std::uint32_t largest, std::uint32_t& number) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || number > largest) return false;
  text.remove_prefix(static_cast<std::size_t>(end - text.data()));
  return true;
}

bool take(std::string_view& text, char c) {
  if (text.empty() || text[0] != c) return false;
  text.remove_prefix(1);
  return true;
}

}  // namespace

bool NumberList::parse(std::string_view text, std::uint32_t largest, std::size_t& position) {
  ranges_.clear();
  std::string_view rest = text;
  do {
    position = text.size() - rest.size() + 1;
    std::uint32_t low = 0;
    if (!takeNumber(rest, largest, low)) return false;
    std::uint32_t high = low;
    if (take(rest, '-')) {
      position = text.size() - rest.size() + 1;
      if (!takeNumber(rest, largest, high) || high < low) return false;
    }
    ranges_.emplace_back(low, high);
  } while (take(rest, ','));
  position = text.size() - rest.size() + 1;
  return rest.empty();
}

std::size_t parseNumber(std::string_view text, std::uint32_t largest, std::uint32_t& number) {
  std::string_view rest = text;
  if (!takeNumber(rest, largest, number)) return 1;
  return rest.empty() ? 0 : text.size() - rest.size() + 1;
}

bool parseTime(std::string_view text, std::uint32_t& milliseconds, std::size_t& position) {
  constexpr std::uint32_t kMostSeconds = UINT32_MAX / 1000 - 1;
  std::string_view rest = text;
  std::uint32_t seconds = 0;
  position = 1;
  if (!takeNumber(rest, kMostSeconds, seconds)) return false;
  milliseconds = seconds * 1000;
  const bool hasDecimals = take(rest, '.');
  for (std::uint32_t scale = 100; hasDecimals && scale > 0 && !rest.empty(); scale /= 10) {
    if (rest[0] < '0' || rest[0] > '9') break;
    milliseconds += static_cast<std::uint32_t>(rest[0] - '0') * scale;
    rest.remove_prefix(1);
  }
  position = text.size() - rest.size() + 1;
  return rest.empty();
}

VelStTraceSelection RecordFilter::selection() const {
  VelStTraceSelection selection{};
  std::tie(selection.firstProcess, selection.lastProcess) = processes.bounds();
  std::tie(selection.firstThread, selection.lastThread) = threads.bounds();
  selection.firstTime = fromMs;
  selection.lastTime = std::max(fromMs, toMs);
  selection.detail = detail;
  selection.keepsFunctions = 1;
  for (std::uint32_t component = 0; component < 256; ++component)
    if (components.matches(component))
      selection.components[component / 8] |= static_cast<std::uint8_t>(1U << component % 8);
  return selection;
}

bool RecordFilter::containsData(const VelStTraceRecord& record) const {
  const std::string_view bytes(reinterpret_cast<const char*>(record.data), record.dataSize);
  return bytes.find(data) != std::string_view::npos;
}

}  // namespace vel::veltrace
