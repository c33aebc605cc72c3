// The one search in tables that are sorted by CCSID.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>

namespace vel::codepage {

/// The row whose `ccsid` it is, or null.
template <typename Row, std::size_t count>
const Row* findByCcsid(const Row (&rows)[count], std::uint32_t ccsid) noexcept {
  const Row* const row = std::ranges::lower_bound(rows, ccsid, {}, &Row::ccsid);
  return row != std::end(rows) && row->ccsid == ccsid ? row : nullptr;
}

}  // namespace vel::codepage
