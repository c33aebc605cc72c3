#include "tools/velini/text_faults.h"

#include <algorithm>

#include "inifile/text_rules.h"

namespace vel::velini {

namespace {

constexpr std::string_view kBlanks = " \t\r\v\f";

/// Returns the number of the first line that is neither blank nor a comment, if that is an option and not a
/// header; otherwise 0.
std::size_t firstLineWithoutSection(std::string_view text) {
  for (std::size_t line = 1; !text.empty(); ++line) {
    const std::string_view current = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(text.size(), current.size() + 1));
    const std::size_t start = current.find_first_not_of(kBlanks);
    if (start == std::string_view::npos || current[start] == ';') continue;
    return current[0] == '[' ? 0 : line;
  }
  return 0;
}

std::size_t lineOf(std::string_view text, std::size_t at) {
  return static_cast<std::size_t>(std::ranges::count(text.substr(0, at), '\n')) + 1;
}

}  // namespace

bool isWide(std::string_view text) {
  using namespace std::string_view_literals;
  if (text.starts_with("\xFF\xFE"sv) || text.starts_with("\xFE\xFF"sv)) return true;
  const std::string_view start = text.substr(0, 64);
  return start.size() > 1 &&
         2 * std::ranges::count(start, '\0') >= static_cast<std::ptrdiff_t>(start.size() - 1);
}

bool hasUtf8Mark(std::string_view text) {
  return text.starts_with(inifile::kUtf8Mark);
}

std::vector<Fault> faultsBeforeSection(std::string_view text) {
  if (isWide(text)) return {{1, kWideText}};
  std::vector<Fault> faults;
  if (hasUtf8Mark(text)) {
    faults.push_back({1, kByteOrderMark});
    text.remove_prefix(std::string_view(inifile::kUtf8Mark).size());
  }
  if (const std::size_t line = firstLineWithoutSection(text); line != 0)
    faults.push_back({line, kNoSectionYet});
  return faults;
}

std::size_t findLoneReturn(std::string_view text) {
  std::size_t at = text.find('\r');
  while (at != std::string_view::npos && text.substr(at + 1, 1) == "\n") at = text.find('\r', at + 1);
  return at;
}

void addByteFaults(std::string_view text, TextId nulFault, bool ignoresReturns, std::vector<Fault>& faults) {
  const std::size_t nul = text.find('\0');
  if (nul != std::string_view::npos) faults.push_back({lineOf(text, nul), nulFault});
  const std::size_t loneReturn = ignoresReturns ? std::string_view::npos : findLoneReturn(text);
  if (loneReturn != std::string_view::npos) faults.push_back({lineOf(text, loneReturn), kLoneReturn});
  std::ranges::stable_sort(faults, {}, &Fault::line);
}

}  // namespace vel::velini
