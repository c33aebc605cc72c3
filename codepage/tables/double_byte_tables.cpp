// The tables from mixed single and double bytes to UCS-2; and the look-up for extended UNIX codes, which
// always fails: ICU converts these pages.
#include <algorithm>

#include "codepage/ccsid_search.h"
#include "codepage/conversion.h"
#include "codepage/tables/conversion_tables.h"

namespace {

using vel::codepage::DoubleByteTable;

// clang-format off
#include "double_byte_tables.inc"
// clang-format on

static_assert(std::ranges::is_sorted(kDoubleByteTables, {}, &DoubleByteTable::ccsid));

}  // namespace

const VelStDoubleByteTable* velGetDBCStoUCS2Table(unsigned int ccsid, bool& isEbcdic) {
  const DoubleByteTable* const table = vel::codepage::findByCcsid(kDoubleByteTables, ccsid);
  // Without a table `isEbcdic` stays unchanged, so callers can set a default.
  if (table != nullptr) isEbcdic = table->isEbcdic != 0;
  return table;
}

const void* velGetEUCtoUCS2Table(unsigned int) {
  return nullptr;
}
