// The layout of the built-in conversion tables, which generate_conversion_tables.py makes from mappings/:
// constant data of 519 KB in all, most of it double-byte pages. Units have the high byte first in memory;
// this order is public, see vel_codepage.h, and the host's is the other one.
#pragma once

#include <bit>
#include <cstdint>

#include "vel_include/vel_codepage.h"

namespace vel::codepage {

/// The unit of each byte; U+FFFD for unmapped bytes.
struct SingleByteTable {
  std::uint32_t ccsid;
  std::uint16_t values[256];
};
static_assert(sizeof(SingleByteTable) == 516);

using DoubleByteTable = VelStDoubleByteTable;
static_assert(sizeof(DoubleByteTable) == 288);

/// `pages` has the layout of velGetUCS2toSBCSTable.
struct ReverseTable {
  std::uint32_t ccsid;
  const std::uint8_t* pages;
};

// The generator writes units as numbers, with their bytes swapped: the high byte is first on such hosts only.
static_assert(std::endian::native == std::endian::little);

/// Returns a unit of a table in the byte order of the host.
constexpr std::uint16_t toHostOrder(std::uint16_t stored) noexcept {
  return static_cast<std::uint16_t>(stored << 8 | stored >> 8);
}

}  // namespace vel::codepage
