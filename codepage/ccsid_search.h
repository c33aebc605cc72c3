// Binary search in tables that are sorted by CCSID.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>

namespace vel::codepage {

/// Returns the row whose `ccsid` is the given one, or null. The rows must be sorted by it.
template <typename Row, std::size_t kCount>
const Row* findByCcsid(const Row (&rows)[kCount], std::uint32_t ccsid) noexcept {
  const Row* const row = std::ranges::lower_bound(rows, ccsid, {}, &Row::ccsid);
  return row != std::end(rows) && row->ccsid == ccsid ? row : nullptr;
}

}  // namespace vel::codepage
