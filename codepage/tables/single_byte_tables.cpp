// The tables from single bytes to UCS-2, generated and in the form that kernels look up. Callers get the
// generated ones, whose units have the high byte first. Swapping bytes would cost the kernel time for every
// byte, so the compiler derives swapped copies here: one with U+0085 as it is, one with U+0085 folded to
// U+000A.
#include "codepage/tables/single_byte_tables.h"

#include <algorithm>
#include <array>
#include <iterator>

#include "codepage/ccsid_search.h"
#include "codepage/conversion.h"
#include "codepage/tables/conversion_tables.h"

namespace {

using vel::codepage::SingleByteTable;

// clang-format off
#include "single_byte_tables.inc"
// clang-format on

static_assert(std::ranges::is_sorted(kSingleByteTables, {}, &SingleByteTable::ccsid));

using HostTables = std::array<std::array<std::uint16_t, 256>, std::size(kSingleByteTables)>;

consteval HostTables hostTables(bool foldsNextLine) {
  HostTables tables{};
  for (std::size_t i = 0; i < tables.size(); ++i)
    for (std::size_t byte = 0; byte < 256; ++byte) {
      const std::uint16_t unit = vel::codepage::toHostOrder(kSingleByteTables[i].values[byte]);
      const bool isFolded = foldsNextLine && unit == vel::codepage::kNextLine;
      tables[i][byte] = isFolded ? vel::codepage::kLineFeed : unit;
    }
  return tables;
}

constexpr HostTables kHostTables = hostTables(false);
constexpr HostTables kFoldedHostTables = hostTables(true);

}  // namespace

const std::uint16_t* vel::codepage::hostTableOf(const std::uint16_t* values, bool foldsNextLine) noexcept {
  // The tables are rows of one array, so the distance from the first is the index: no search by CCSID.
  const auto* const first = reinterpret_cast<const char*>(kSingleByteTables[0].values);
  const auto distance = static_cast<std::size_t>(reinterpret_cast<const char*>(values) - first);
  const HostTables& tables = foldsNextLine ? kFoldedHostTables : kHostTables;
  return tables[distance / sizeof(SingleByteTable)].data();
}

const uint16_t* velGetSBCStoUCS2Table(unsigned int ccsid) {
  const SingleByteTable* const table = vel::codepage::findByCcsid(kSingleByteTables, ccsid);
  return table != nullptr ? table->values : nullptr;
}
