// The single-byte conversion tables.
#include <algorithm>

#include "codepage/ccsid_search.h"
#include "codepage/conversion_tables.h"

namespace {

using vel::codepage::SingleByteTable;

// clang-format off
#include "single_byte_tables.inc"
// clang-format on

static_assert(std::ranges::is_sorted(kSingleByteTables, {}, &SingleByteTable::ccsid));

}  // namespace

const uint16_t* velGetSBCStoUCS2Table(unsigned int ccsid) {
  const SingleByteTable* const table = vel::codepage::findByCcsid(kSingleByteTables, ccsid);
  return table != nullptr ? table->values : nullptr;
}
