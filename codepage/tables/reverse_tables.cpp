// The tables from UCS-2 to single bytes. Only a few pages have one; ICU converts to most of the others.
#include <algorithm>

#include "codepage/ccsid_search.h"
#include "codepage/tables/conversion_tables.h"

namespace {

using vel::codepage::ReverseTable;

// clang-format off
#include "reverse_tables.inc"
// clang-format on

static_assert(std::ranges::is_sorted(kReverseTables, {}, &ReverseTable::ccsid));

}  // namespace

const unsigned char* velGetUCS2toSBCSTable(unsigned int ccsid) {
  const ReverseTable* const table = vel::codepage::findByCcsid(kReverseTables, ccsid);
  return table != nullptr ? table->pages : nullptr;
}
