// The built-in conversion tables, made from mappings/ by generate_conversion_tables.py; constant data of 519
// KB in all, most of it double-byte pages. Their units stand with the high byte first in memory.
#pragma once

#include <bit>
#include <cstdint>

#include "vel_include/vel_codepage.h"

namespace vel::codepage {

struct SingleByteTable {
  std::uint32_t ccsid;
  std::uint16_t values[256];
};
static_assert(sizeof(SingleByteTable) == 516);

using DoubleByteTable = VelStDoubleByteTable;
static_assert(sizeof(DoubleByteTable) == 288);

struct ReverseTable {
  std::uint32_t ccsid;
  const std::uint8_t* pages;
};

// The generator writes the units for these processors.
static_assert(std::endian::native == std::endian::little);

/// A table's unit in the order of the host.
constexpr std::uint16_t toHostOrder(std::uint16_t stored) noexcept {
  return static_cast<std::uint16_t>(stored << 8 | stored >> 8);
}

}  // namespace vel::codepage
