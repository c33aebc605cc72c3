// Lists of components, one after the other, beside a plain set of numbers.
#include <bitset>

#include "fuzz/bytes.h"
#include "vel_include/vel_trace.h"

namespace {

using Components = std::bitset<600>;

/// Digits from `at` on, at most 32 bits.
std::uint64_t numberAt(std::string_view item, std::size_t& at) {
  std::uint64_t number = 0;
  for (; at < item.size() && item[at] >= '0' && item[at] <= '9'; ++at)
    number = std::min<std::uint64_t>(number * 10 + static_cast<unsigned char>(item[at] - '0'), 0xFFFFFFFF);
  return number;
}

void applyItem(Components& components, std::string_view item) {
  const std::size_t sign = item.find_last_of("+-");
  std::uint64_t from = 0, to = 0;
  bool inRange = false;
  for (std::size_t at = 0; at < item.size();) {
    if (item[at] >= '0' && item[at] <= '9') {
      (inRange ? to : from) = numberAt(item, at);
      continue;
    }
    if (item[at] == '*') from = 1, to = 255;
    inRange = inRange || item[at] == '.';
    ++at;
  }
  if (to == 0) to = from;
  for (; from != 0 && from <= std::min<std::uint64_t>(to, 255); ++from)
    components[from] = sign == std::string_view::npos || item[sign] == '+';
}

void applyList(Components& components, std::string_view list) {
  const std::size_t end = list.find(',');
  applyItem(components, list.substr(0, end));
  if (end != std::string_view::npos) applyList(components, list.substr(end + 1));
}

}  // namespace

void fuzz::run(fuzz::Bytes input) {
  VelClTraceFilter filter;
  filter.disableAllComponentIds();
  Components components;
  for (const Text& list : input.texts()) {
    filter.enableComponentIds(list);
    applyList(components, list.view());
  }
  components[0] = true;
  for (unsigned short id = 0; id < components.size(); ++id)
    require(filter.matchesCompId(id) == components[id]);
  require({!filter.matchesCompId(65535), filter.usesCompIdFilter() == (components.count() < 256)});
}
