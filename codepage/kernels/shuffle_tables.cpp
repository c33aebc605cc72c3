// The shuffles of the kernels for SSE4.1 and AVX2, made by the compiler.
#include "codepage/kernels/shuffle_tables.h"

#include <cstddef>

namespace vel::codepage {

namespace {

constexpr std::uint8_t kZero = 0x80;

/// Calls `append(lane, mask, add)` for each lane of each mask; `add(byte)` adds a byte to the shuffle.
template <typename Append>
consteval ShuffleTable makeTable(std::size_t lanes, Append append) {
  ShuffleTable table{};
  for (std::size_t mask = 0; mask < table.size(); ++mask) {
    table[mask].fill(kZero);
    std::size_t size = 0;
    const auto add = [&](std::size_t byte) { table[mask][size++] = static_cast<std::uint8_t>(byte); };
    for (std::size_t lane = 0; lane < lanes; ++lane) append(lane, mask >> lane, add);
  }
  return table;
}

}  // namespace

alignas(64) constinit const ShuffleTable kCompressUnits = makeTable(8, [](std::size_t lane, std::size_t mask,
                                                                          auto add) {
  if (mask % 2 == 0) return;
  add(2 * lane);
  add(2 * lane + 1);
});

alignas(64) constinit const ShuffleTable kCompressTwoBytes = makeTable(8, [](std::size_t lane,
                                                                             std::size_t mask, auto add) {
  add(2 * lane);
  if (mask % 2 == 0) add(2 * lane + 1);
});

alignas(64) constinit const ShuffleTable kCompressThreeBytes = makeTable(4, [](std::size_t lane,
                                                                               std::size_t mask, auto add) {
  if ((mask >> 4) % 2 == 0) add(4 * lane + 2);
  if (mask % 2 == 0) add(4 * lane + 3);
  add(4 * lane);
});

}  // namespace vel::codepage
