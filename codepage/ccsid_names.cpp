// Finds the CCSID of a name such as "latin1" or "windows-1252", and the names of a CCSID, in a table that is
// generated from ccsid_names.tsv. VelClCCSID itself knows only the names in the table of CCSIDs.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string_view>

#include "base/ascii.h"
#include "vel_include/vel_codepage.h"

namespace {

struct Name {
  std::string_view key;  ///< what keyOfName makes of `name`
  const char* name;
  std::uint32_t ccsid;
  std::uint32_t index;  ///< among the names of the CCSID; 0 is the preferred one
};

// Sorted by key, and again by CCSID and index.
constexpr Name kNames[] = {
#include "ccsid_names.inc"
};
constexpr std::uint16_t kByCcsid[] = {
#include "ccsid_name_order.inc"
};
static_assert(std::ranges::is_sorted(kNames, {}, &Name::key));
static_assert(std::size(kNames) == std::size(kByCcsid));

constexpr std::size_t kMaxKeyLength =
    std::ranges::max_element(kNames, {}, [](const Name& each) { return each.key.size(); })->key.size();

/// Two names are equal if these are: the letters in lower case and the digits, without the leading zeros of
/// numbers. Unicode Technical Standard 22 defines this.
class Key {
 public:
  explicit Key(const char* name) {
    for (; *name != '\0' && isKnown_; ++name) add(*name, name[1]);
  }

  /// Returns the key, or an empty one if no name in the table can have it.
  std::string_view get() const { return {text_, isKnown_ ? size_ : 0}; }

 private:
  void add(char c, char next) {
    const bool isLeadingZero = c == '0' && !isInNumber_ && vel::isAsciiDigit(next);
    isInNumber_ = vel::isAsciiDigit(c) && !isLeadingZero;
    const bool isCompared = vel::isAsciiAlnum(c) && !isLeadingZero;
    isKnown_ = static_cast<unsigned char>(c) < 0x80 && !(isCompared && size_ == kMaxKeyLength);
    if (isCompared && isKnown_) text_[size_++] = vel::toAsciiLower(c);
  }

  char text_[kMaxKeyLength] = {};
  std::size_t size_ = 0;
  bool isInNumber_ = false;
  bool isKnown_ = true;
};

}  // namespace

unsigned int velGetCCSIDOfName(const char* name) {
  if (name == nullptr) return VelClCCSID::CCSID_UNKNOWN;
  const Key key(name);
  const Name* const found = std::ranges::lower_bound(kNames, key.get(), {}, &Name::key);
  const bool isFound = found != std::end(kNames) && found->key == key.get();
  return isFound ? found->ccsid : static_cast<unsigned int>(VelClCCSID::CCSID_UNKNOWN);
}

const char* velGetNameOfCCSID(unsigned int ccsid, std::size_t index) {
  const auto* const first =
      std::ranges::lower_bound(kByCcsid, ccsid, {}, [](std::uint16_t each) { return kNames[each].ccsid; });
  if (index >= static_cast<std::size_t>(std::end(kByCcsid) - first)) return nullptr;
  const Name& name = kNames[first[index]];
  return name.ccsid == ccsid ? name.name : nullptr;
}
