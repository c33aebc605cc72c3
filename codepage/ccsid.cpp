// VelClCCSID: numbers, names and properties of CCSIDs, from a table that is generated from ccsids.tsv. How a
// CCSID is converted is decided in routes.cpp.
#include <algorithm>
#include <atomic>
#include <cstring>
#include <iterator>

#include "base/ascii.h"
#include "codepage/ccsid_search.h"
#include "platform/code_pages.h"
#include "vel_include/vel_codepage.h"

struct VelStCcsid {
  std::uint32_t ccsid;
  std::uint32_t flags;
  const char* name;
};

namespace {

// Bits of the table's flags; a row may have several or none.
constexpr std::uint32_t kAscii = 0x01;
constexpr std::uint32_t kEbcdic = 0x02;
constexpr std::uint32_t kDoubleByte = 0x04;
constexpr std::uint32_t kSingleByte = 0x08;
constexpr std::uint32_t kUcs2 = 0x40;

constexpr VelStCcsid kCcsids[] = {
#include "ccsids.inc"
};

static_assert(std::ranges::is_sorted(kCcsids, {}, &VelStCcsid::ccsid));

/// Row 0, "???", is used for every CCSID that is not in the table; none of its flags are set.
constexpr const VelStCcsid* kUnknown = &kCcsids[0];

const VelStCcsid* rowOrUnknown(std::uint32_t ccsid) {
  const VelStCcsid* const row = vel::codepage::findByCcsid(kCcsids, ccsid);
  return row != nullptr ? row : kUnknown;
}

/// Searches linearly: names are resolved once for many texts, and the table is sorted by CCSID.
const VelStCcsid* rowOfName(const char* name) {
  const auto* const row = std::ranges::find_if(
      kCcsids, [name](const VelStCcsid& each) { return vel::equalsIgnoringAsciiCase(each.name, name); });
  return row != std::end(kCcsids) ? row : nullptr;
}

const char* firstDigit(const char* text) {
  while (*text != '\0' && !vel::isAsciiDigit(*text)) ++text;
  return text;
}

VelClCCSID::VelEnCCSID numberAt(const char* text) {
  return static_cast<VelClCCSID::VelEnCCSID>(vel::parseInt32(text));
}

// getName() and the properties are const and fill in the row when it is first needed, so two threads may
// store it at once. Both store the same pointer to constant data: relaxed atomic accesses suffice.
const VelStCcsid* load(const VelStCcsid*& row) {
  return std::atomic_ref(row).load(std::memory_order_relaxed);
}
void store(const VelStCcsid*& row, const VelStCcsid* value) {
  std::atomic_ref(row).store(value, std::memory_order_relaxed);
}

/// Maps the two CCSIDs of UCS-2 in host order to one, for comparisons.
// Intentional: 1200, 17584 and 61955 convert like 13488, but callers see them as different CCSIDs.
VelClCCSID::VelEnCCSID folded(VelClCCSID::VelEnCCSID ccsid) {
  return ccsid == VelClCCSID::CCSID_UCS2_LITTLE_ENDIAN ? VelClCCSID::CCSID_UCS2 : ccsid;
}

/// The console's code page when it was first queried; 0 before. A program that changes the console's code
/// page later still gets the first one.
constinit std::atomic<std::uint32_t> gs_consoleCcsid = 0;

}  // namespace

VelClCCSID::VelClCCSID(const char* name) : ccsid_(CCSID_UNKNOWN), row_(nullptr) {
  if (name == nullptr) name = "";
  if (vel::isAsciiDigit(*name)) {
    ccsid_ = numberAt(name);
    row_ = rowOrUnknown(ccsid_);
  } else if (const VelStCcsid* const row = rowOfName(name)) {
    ccsid_ = static_cast<VelEnCCSID>(row->ccsid);
    row_ = row;
  } else {
    // Intentional: "CP1252" gets the value 1252 but stays invalid; callers detect a misspelt name by
    // isValid().
    ccsid_ = numberAt(firstDigit(name));
    row_ = kUnknown;
  }
}

VelClCCSID::VelClCCSID(const VelClCCSID& other) : ccsid_(other.ccsid_), row_(load(other.row_)) {}

VelClCCSID& VelClCCSID::operator=(const VelClCCSID& other) {
  if (this == &other) return *this;
  ccsid_ = other.ccsid_;
  store(row_, load(other.row_));
  return *this;
}

bool VelClCCSID::operator==(const VelClCCSID& other) const {
  return folded(ccsid_) == folded(other.ccsid_);
}

bool VelClCCSID::operator==(VelEnCCSID ccsid) const {
  return *this == VelClCCSID(ccsid);
}

const VelStCcsid& VelClCCSID::determineProperties() const {
  const VelStCcsid* row = load(row_);
  if (row == nullptr) {
    row = rowOrUnknown(ccsid_);
    store(row_, row);
  }
  return *row;
}

bool VelClCCSID::hasFlag(uint32_t flag) const {
  return (determineProperties().flags & flag) != 0;
}

const char* VelClCCSID::getName() const {
  return determineProperties().name;
}

bool VelClCCSID::isValid() const {
  return ccsid_ != CCSID_UNKNOWN && &determineProperties() != kUnknown;
}

bool VelClCCSID::isASCII() const {
  return hasFlag(kAscii);
}

bool VelClCCSID::isEBCDIC() const {
  return hasFlag(kEbcdic);
}

bool VelClCCSID::isDBCS() const {
  return hasFlag(kDoubleByte);
}

bool VelClCCSID::isSBCS() const {
  return hasFlag(kSingleByte);
}

bool VelClCCSID::isUCS2() const {
  return hasFlag(kUcs2);
}

bool VelClCCSID::isUCS2BigEndian() const {
  return isUCS2() && ccsid_ == CCSID_UCS2_BIG_ENDIAN;
}

// CCSIDs of UCS-2 that do not define a byte order use the host's, which is little-endian.
bool VelClCCSID::isUCS2LittleEndian() const {
  return isUCS2() && ccsid_ != CCSID_UCS2_BIG_ENDIAN;
}

bool VelClCCSID::isUCS2HostEndian() const {
  return isUCS2LittleEndian();
}

VelClCCSID::VelEnCCSID VelClCCSID::getCCSIDForUCS2EndianId(const char* mark) {
  if (VelClConverterABase::isUCS2BigEndianId(mark)) return CCSID_UCS2_BIG_ENDIAN;
  return VelClConverterABase::isUCS2LittleEndianId(mark) ? CCSID_UCS2_LITTLE_ENDIAN : CCSID_UNKNOWN;
}

VelClCCSID::VelEnCCSID VelClCCSID::getSystemCCSID() {
  return static_cast<VelEnCCSID>(vel::platform::ansiCodePage());
}

VelClCCSID::VelEnCCSID VelClCCSID::getConsoleCCSID() {
  std::uint32_t ccsid = gs_consoleCcsid.load(std::memory_order_relaxed);
  if (ccsid == 0) {
    ccsid = vel::platform::oemCodePage();
    gs_consoleCcsid.store(ccsid, std::memory_order_relaxed);
  }
  return static_cast<VelEnCCSID>(ccsid);
}
