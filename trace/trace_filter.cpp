// The filter of trace entries, and the lists of components that it is set up with.
#include <algorithm>
#include <cstdint>
#include <cstring>

#include "base/ascii.h"
#include "vel_include/vel_trace.h"

namespace {

struct DetailName {
  const char* name;
  VelEnTraceDetail detail;
};
/// By number.
constexpr DetailName kDetails[] = {{"OFF", VelEnTraceDetail::OFF},
                                   {"LOW", VelEnTraceDetail::LOW},
                                   {"MED", VelEnTraceDetail::MEDIUM},
                                   {"HIGH", VelEnTraceDetail::HIGH}};

bool beginsWith(const char* text, const char* name) {
  for (; *name != '\0'; ++text, ++name)
    if (vel::toAsciiUpper(*text) != *name) return false;
  return true;
}

std::uint32_t numberIn(const char* text) {
  return text == nullptr ? 0 : static_cast<std::uint32_t>(vel::parseInt32(text));
}

/// One item of a component list while it is read.
struct Item {
  std::uint32_t low = 0;
  std::uint32_t high = 0;
  bool include = true;
  bool readsHigh = false;
};

}  // namespace

VelClTraceFilter::VelClTraceFilter() : detail_(VelEnTraceDetail::LOW), processId_(0), threadId_(0) {
  enableAllComponentIds();
}

void VelClTraceFilter::setDetail(const char* text) {
  detail_ = VelEnTraceDetail::OFF;
  if (text == nullptr) return;
  for (const DetailName& row : kDetails)
    if (beginsWith(text, row.name)) detail_ = row.detail;
}

const char* VelClTraceFilter::getDetailAsCString(VelEnTraceDetail detail) {
  for (const DetailName& row : kDetails)
    if (row.detail == detail) return row.name;
  return nullptr;
}

void VelClTraceFilter::setProcessId(const char* text) {
  processId_ = numberIn(text);
}

void VelClTraceFilter::setThreadId(const char* text) {
  threadId_ = numberIn(text);
}

bool VelClTraceFilter::usesCompIdFilter() const {
  // Component 0 passes whatever its bit says.
  if ((components_[0] | 1) != 0xFF) return true;
  return std::any_of(components_ + 1, components_ + sizeof components_,
                     [](unsigned char bits) { return bits != 0xFF; });
}

void VelClTraceFilter::setComponentIdSet(unsigned short from, unsigned short to, bool enable) {
  if (from != 0) setBits(from, to == 0 ? from : to, enable);
}

void VelClTraceFilter::enableComponentIds(const char* list) {
  if (list == nullptr) return;
  Item item;
  const auto apply = [this, &item] {
    if (item.low != 0) setBits(item.low, item.high == 0 ? item.low : item.high, item.include);
    item = Item();
  };
  while (*list != '\0') {
    if (vel::isAsciiDigit(*list)) {
      (item.readsHigh ? item.high : item.low) = vel::parseUint32(list, &list);
      continue;
    }
    switch (*list++) {
      case '+':
        item.include = true;
        break;
      case '-':
        item.include = false;
        break;
      case '.':
        item.readsHigh = true;
        break;
      case '*':
        item.low = 1;
        item.high = kComponents - 1;
        break;
      case ',':
        apply();
        break;
      default:
        break;
    }
  }
  apply();
}

void VelClTraceFilter::setBits(unsigned int from, unsigned int to, bool enable) {
  for (unsigned int id = from; id <= std::min(to, kComponents - 1); ++id) {
    const unsigned int bit = 1U << id % 8;
    components_[id / 8] =
        static_cast<unsigned char>(enable ? components_[id / 8] | bit : components_[id / 8] & ~bit);
  }
}
