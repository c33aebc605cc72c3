// Lists 0 and all known CCSIDs by trying all numbers, since the library's table is not public.
#include "tools/velconv/ccsid_list.h"

#include <ostream>
#include <string>

#include "tools/ccsids.h"
#include "vel_include/vel_strict_conversion.h"

namespace vel::velconv {

namespace {

constexpr int kMaxCcsid = 0xFFFF;

constexpr const char* nameOf(VelClConverterABase::VelEnRoute route) {
  constexpr const char* kNames[] = {"none", "algorithm", "table", "icu", "system"};
  return kNames[static_cast<int>(route)];
}

std::string propertiesOf(const VelClCCSID& ccsid) {
  std::string properties;
  const auto add = [&properties](bool has, const char* name) {
    if (!has) return;
    if (!properties.empty()) properties += ' ';
    properties += name;
  };
  add(ccsid.isASCII(), "ASCII");
  add(ccsid.isEBCDIC(), "EBCDIC");
  add(ccsid.isDBCS(), "DBCS");
  add(ccsid.isSBCS(), "SBCS");
  add(ccsid.isUCS2(), "UCS-2");
  return properties.empty() ? "-" : properties;
}

/// Calls `visit(ccsid)` for each known CCSID, in ascending order.
template <typename Visit>
void forEachCcsid(Visit visit) {
  for (int number = 1; number <= kMaxCcsid; ++number)
    if (const VelClCCSID ccsid(number); tools::isKnown(ccsid)) visit(ccsid);
}

/// Calls `visit(name)` for each name of a CCSID, the preferred one first.
template <typename Visit>
void forEachName(const VelClCCSID& ccsid, Visit visit) {
  for (std::size_t i = 0; const char* const name = velGetNameOfCCSID(ccsid.getCCSID(), i); ++i) visit(name);
}

void listCcsid(std::ostream& out, const VelClCCSID& ccsid) {
  out << ccsid.getAsInt() << '\t' << ccsid.getName() << '\t' << propertiesOf(ccsid) << '\t'
      << nameOf(VelClStrictConversion::getRouteToUcs2(ccsid)) << '\t'
      << nameOf(VelClStrictConversion::getRouteFromUcs2(ccsid)) << '\t';
  const char* separator = "";
  forEachName(ccsid, [&](const char* name) {
    out << separator << name;
    separator = " ";
  });
  out << (*separator == '\0' ? "-\n" : "\n");
}

}  // namespace

void listCcsids(std::ostream& out) {
  // 0 has a row in the library's table, so it is listed, although isValid() is false for it.
  listCcsid(out, VelClCCSID(0));
  forEachCcsid([&out](const VelClCCSID& ccsid) { listCcsid(out, ccsid); });
}

void listNames(std::ostream& out) {
  forEachCcsid([&out](const VelClCCSID& ccsid) {
    const int number = ccsid.getAsInt();
    forEachName(ccsid, [&](const char* name) { out << name << '\t' << number << '\n'; });
    out << number << '\t' << number << '\n';
  });
}

void showKernels(std::ostream& out) {
  out << velGetKernelLevel() << '\n';
}

}  // namespace vel::velconv
