// The filter of trace entries, and the parser of the component lists that configure it. The tests that run
// for each entry are inline in vel_trace.h.
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
constexpr DetailName kDetails[] = {{"OFF", VelEnTraceDetail::OFF},
                                   {"LOW", VelEnTraceDetail::LOW},
                                   {"MED", VelEnTraceDetail::MEDIUM},
                                   {"HIGH", VelEnTraceDetail::HIGH}};

/// `name` is in upper case. Intentional: only a prefix is compared, so "HIGHEST" selects HIGH.
bool startsWithIgnoringCase(const char* text, const char* name) {
  for (; *name != '\0'; ++text, ++name)
    if (vel::toAsciiUpper(*text) != *name) return false;
  return true;
}

std::uint32_t parseNumber(const char* text) {
  return text == nullptr ? 0 : static_cast<std::uint32_t>(vel::parseInt32(text));
}

/// The item of a component list that is being parsed: "10.20" has low 10 and high 20.
struct ListItem {
  std::uint32_t low = 0;   ///< 0 until the item has a number; an item without one is ignored
  std::uint32_t high = 0;  ///< 0 means the same as `low`
  bool include = true;
  bool readsHigh = false;  ///< the next number is `high`
};

}  // namespace

VelClTraceFilter::VelClTraceFilter() : detail_(VelEnTraceDetail::LOW), processId_(0), threadId_(0) {
  enableAllComponentIds();
}

void VelClTraceFilter::setDetail(const char* text) {
  detail_ = VelEnTraceDetail::OFF;
  if (text == nullptr) return;
  for (const DetailName& row : kDetails)
    if (startsWithIgnoringCase(text, row.name)) detail_ = row.detail;
}

const char* VelClTraceFilter::getDetailAsCString(VelEnTraceDetail detail) {
  for (const DetailName& row : kDetails)
    if (row.detail == detail) return row.name;
  return nullptr;
}

void VelClTraceFilter::setProcessId(const char* text) {
  processId_ = parseNumber(text);
}

void VelClTraceFilter::setThreadId(const char* text) {
  threadId_ = parseNumber(text);
}

bool VelClTraceFilter::usesCompIdFilter() const {
  // Bit 0 is ignored, because component 0 always passes.
  if ((components_[0] | 1) != 0xFF) return true;
  return std::any_of(components_ + 1, components_ + sizeof components_,
                     [](unsigned char bits) { return bits != 0xFF; });
}

void VelClTraceFilter::setComponentIdSet(unsigned short from, unsigned short to, bool enable) {
  if (from != 0) setBits(from, to == 0 ? from : to, enable);
}

// One pass over the list. Each sign sets a property of the current item, and "," or the end applies the item.
// Signs may be in any order, and a later number replaces an earlier one: "10-20" is the item "-20".
void VelClTraceFilter::enableComponentIds(const char* list) {
  if (list == nullptr) return;
  ListItem item;
  const auto apply = [this, &item] {
    if (item.low != 0) setBits(item.low, item.high == 0 ? item.low : item.high, item.include);
    item = ListItem();
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
        // Intentional: all other characters are ignored.
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
