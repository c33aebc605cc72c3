// Lists and sets of components, compared with a set of numbers. The input is a sequence of steps: an option
// byte, and a list or two numbers.
#include <bitset>

#include "fuzz/bytes.h"
#include "vel_include/vel_trace.h"

namespace fuzz::component_list {

namespace {

using Components = std::bitset<0x10000>;

void set(Components& components, std::uint64_t from, std::uint64_t to, bool isIn) {
  for (; from <= std::min<std::uint64_t>(to, 255); ++from) components[from] = isIn;
}

/// Consumes a number from `at`, saturated to 32 bits.
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
  if (from != 0)
    set(components, from, to == 0 ? from : to, sign == std::string_view::npos || item[sign] == '+');
}

void applyList(Components& components, std::string_view list) {
  const std::size_t end = list.find(',');
  applyItem(components, list.substr(0, end));
  if (end != std::string_view::npos) applyList(components, list.substr(end + 1));
}

void step(Bytes& input, VelClTraceFilter& filter, Components& components) {
  const unsigned int option = input.byte();
  const bool isIn = (option & 4) != 0;
  if ((option & 3) == 0) {
    const Text list = input.text();
    filter.enableComponentIds(list);
    return applyList(components, list.view());
  }
  // Options make numbers beyond the last component.
  const auto from = static_cast<unsigned short>(input.byte() + (option & 8) * 32);
  const auto to = static_cast<unsigned short>(input.byte() + (option & 16) * 4000);
  if ((option & 3) == 1) {
    isIn ? filter.enableComponentId(from) : filter.disableComponentId(from);
    set(components, from, from, isIn);
  } else if ((option & 3) == 2) {
    isIn ? filter.enableComponentIdSet(from, to) : filter.disableComponentIdSet(from, to);
    set(components, from, to, isIn);
  } else {
    filter.setComponentIdSet(from, to, isIn);
    if (from != 0) set(components, from, to == 0 ? from : to, isIn);
  }
}

void run(Bytes input) {
  VelClTraceFilter filter;
  filter.disableAllComponentIds();
  static Components components;
  components.reset();
  while (!input.atEnd()) step(input, filter, components);
  components[0] = true;
  for (unsigned int id = 0; id < 600; ++id)
    require(filter.matchesCompId(static_cast<unsigned short>(id)) == components[id]);
  require({!filter.matchesCompId(65535), filter.usesCompIdFilter() == (components.count() < 256)});
}

const Target target("component_list", run);

}  // namespace

}  // namespace fuzz::component_list
