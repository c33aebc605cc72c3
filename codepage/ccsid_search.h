// Binary search in the tables that are sorted by CCSID; all such tables share it.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>

namespace vel::codepage {

/// Returns the row with this `ccsid`, or null.
template <typename Row, std::size_t count>
const Row* findByCcsid(const Row (&rows)[count], std::uint32_t ccsid) noexcept {
  const Row* const row = std::ranges::lower_bound(rows, ccsid, {}, &Row::ccsid);
  return row != std::end(rows) && row->ccsid == ccsid ? row : nullptr;
}

}  // namespace vel::codepage
