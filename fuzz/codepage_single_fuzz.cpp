// Any bytes through the tables of single bytes, both ways, and through what only moves bytes, beside plain
// loops.
#include <algorithm>
#include <iterator>
#include <vector>

#include "fuzz/conversion_run.h"

namespace {

std::vector<int> pagesWithTables() {
  std::vector<int> pages;
  for (int number = 0; number < 0x10000; ++number)
    if (velGetSBCStoUCS2Table(static_cast<unsigned int>(number)) != nullptr) pages.push_back(number);
  return pages;
}

Outcome toUcs2(int page, std::string_view source) {
  const uint16_t* const table = velGetSBCStoUCS2Table(static_cast<unsigned int>(page));
  Outcome outcome{"", source.size()};
  for (const char c : source) {
    const auto* const unit = reinterpret_cast<const char*>(table + static_cast<unsigned char>(c));
    const bool isNextLine = VelClCCSID(page).isEBCDIC() && unit[0] == 0 && unit[1] == '\x85';
    outcome.bytes += isNextLine ? '\n' : unit[1];
    outcome.bytes += unit[0];
  }
  return outcome;
}

Outcome fromUcs2(int page, std::string_view source) {
  const unsigned char* const table = velGetUCS2toSBCSTable(static_cast<unsigned int>(page));
  Outcome outcome = source.size() % 2 == 0 ? Outcome{} : incomplete("", 0);
  outcome.consumed = source.size() / 2 * 2;
  for (std::size_t i = 0; i < outcome.consumed; i += 2) {
    const auto low = static_cast<unsigned char>(source[i]);
    const auto high = static_cast<unsigned char>(source[i + 1]);
    outcome.bytes += static_cast<char>(page == 819 ? low : table[table[high] * 256U + low]);
  }
  return outcome;
}

Outcome betweenUcs2(int page, std::string_view source, std::size_t room) {
  const std::size_t size = std::min(source.size(), room);
  Outcome outcome = size % 2 == 0 ? Outcome{} : incomplete("", 0);
  outcome.consumed = size / 2 * 2;
  outcome.bytes = source.substr(0, outcome.consumed);
  if (page == 65500)
    for (std::size_t i = 0; i < outcome.consumed; i += 2) std::swap(outcome.bytes[i], outcome.bytes[i + 1]);
  return outcome;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const std::vector<int> pages = pagesWithTables();
  constexpr int kReversePages[] = {500, 850, 819};
  constexpr int kUcs2[] = {1200, 65500};
  const fuzz::Input input(data, size);
  for (const int page : kUcs2) {
    const std::size_t room = input.room(input.source.size());
    const VelClCodePage2UnicodeConverter from{VelClCCSID(page)};
    const VelClUnicode2CodePageConverter to{VelClCCSID(page)};
    fuzz::require(convert(from, input.source, room) == betweenUcs2(page, input.source, room));
    fuzz::require(convert(to, input.source, room) == betweenUcs2(page, input.source, room));
  }
  for (const int page : kReversePages)
    fuzz::requireAll(VelClUnicode2CodePageConverter(VelClCCSID(page)), input, fromUcs2(page, input.source));
  const int page = pages[input.choice % pages.size()];
  fuzz::requireAll(VelClCodePage2UnicodeConverter(VelClCCSID(page)), input, toUcs2(page, input.source));
  return 0;
}
