// Single bytes to UCS-2 and back for SSE4.1 and AVX2. A table of 256 bytes is looked up in 16 rows of 16: a
// shuffle looks up a row by the lowest four bits of an index, and gives 0 where the top bit is set. Indexes
// that are lowered by 16 for each row are negative from the row of their own on:
//
//   index 25    25 - 0 = 25: row 0 at 5    25 - 10 = 15: row 1 at 5    25 - 20 = 5: row 2 at 5    -B: 0
//
// A row holds the exclusive or of its bytes and those of the row before, so that what remains of the sum of
// all looked up bytes is the byte of the last row. See W. Mula, "SIMD-ized lookup of a 256-byte table".
#pragma once

#include "codepage/conversion.h"
#include "codepage/kernels/block_vectors.h"
#include "codepage/kernels/kernels.h"

namespace vel::codepage {

namespace {

constexpr std::size_t kRow = 16;
constexpr std::size_t kRows = 16;
/// The rows of indexes below 80, and of those above.
constexpr std::size_t kHalf = kRows / 2;

/// A table of 256 bytes as rows that differ from the row before, except for the first one of each half.
struct ByteRows {
  alignas(32) std::uint8_t rows[kRows][kRow];
};

/// Sets a row to the difference from `previous`, which becomes the row's own bytes.
VEL_VECTOR inline void setRow(ByteRows& table, std::size_t row, __m128i bytes, __m128i& previous) {
  if (row % kHalf == 0) previous = _mm_setzero_si128();
  _mm_store_si128(reinterpret_cast<__m128i*>(table.rows[row]), _mm_xor_si128(bytes, previous));
  previous = bytes;
}

/// The low and the high bytes of a table of units.
struct UnitRows {
  ByteRows low, high;
  bool hasHigh[2];  ///< whether high bytes are not all 0, for each half
};

VEL_VECTOR inline void split(const std::uint16_t* table, UnitRows& rows) {
  __m128i previousLow = _mm_setzero_si128(), previousHigh = previousLow, all = previousLow;
  for (std::size_t row = 0; row < kRows; ++row) {
    const auto* const units = reinterpret_cast<const __m128i*>(table + row * kRow);
    const __m128i first = _mm_loadu_si128(units), second = _mm_loadu_si128(units + 1);
    const __m128i mask = _mm_set1_epi16(0xFF);
    const __m128i high = _mm_packus_epi16(_mm_srli_epi16(first, 8), _mm_srli_epi16(second, 8));
    setRow(rows.low, row, _mm_packus_epi16(_mm_and_si128(first, mask), _mm_and_si128(second, mask)),
           previousLow);
    setRow(rows.high, row, high, previousHigh);
    all = row % kHalf == 0 ? high : _mm_or_si128(all, high);
    if (row % kHalf == kHalf - 1) rows.hasHigh[row / kHalf] = _mm_testz_si128(all, all) == 0;
  }
}

/// Adds the bytes of the rows of half a table to `low`, and of half another one to `high` unless that is
/// null. Two vectors share the loads of rows.
template <typename V>
VEL_VECTOR inline void addRows(const std::uint8_t (*lowRows)[kRow], const std::uint8_t (*highRows)[kRow],
                               typename V::Bytes first, typename V::Bytes second, typename V::Bytes (&low)[2],
                               typename V::Bytes (&high)[2]) {
// Unrolled, the loop would keep indexes of many rows in memory.
#pragma GCC unroll 1
  for (std::size_t row = 0; row < kHalf; ++row) {
    const typename V::Bytes bytes = V::repeat(lowRows[row]);
    low[0] ^= V::shuffleHalves(bytes, first);
    low[1] ^= V::shuffleHalves(bytes, second);
    if (highRows != nullptr) {
      const typename V::Bytes highBytes = V::repeat(highRows[row]);
      high[0] ^= V::shuffleHalves(highBytes, first);
      high[1] ^= V::shuffleHalves(highBytes, second);
    }
    // Saturation keeps negative indexes, which are those of the other half, negative.
    first = V::subtractSaturated(first, codepage::bytes<V, kRow>());
    second = V::subtractSaturated(second, codepage::bytes<V, kRow>());
  }
}

/// Looks up two vectors of bytes in one or two tables, of which null stands for halves that are all 0.
template <typename V>
VEL_VECTOR inline void lookUpRows(const ByteRows& lowRows, const std::uint8_t (*lowerHigh)[kRow],
                                  const std::uint8_t (*upperHigh)[kRow], typename V::Bytes first,
                                  typename V::Bytes second, typename V::Bytes (&low)[2],
                                  typename V::Bytes (&high)[2]) {
  low[0] = low[1] = high[0] = high[1] = typename V::Bytes{};
  const auto add = [&](std::size_t row, const std::uint8_t(*highRows)[kRow]) VEL_VECTOR {
    if (highRows == nullptr)
      addRows<V>(lowRows.rows + row, nullptr, first, second, low, high);
    else
      addRows<V>(lowRows.rows + row, highRows, first, second, low, high);
  };
  add(0, lowerHigh);
  first ^= codepage::bytes<V, 0x80>();
  second ^= codepage::bytes<V, 0x80>();
  add(kHalf, upperHigh);
}

/// Below this size, preparing the rows costs more than they save.
constexpr std::size_t kRowsFrom = 256;

VEL_VECTOR void lookUpBytes(char* target, const char* source, std::size_t size,
                            const std::uint16_t* table) noexcept {
  using V = Widest;
  constexpr std::size_t kStep = 2 * V::kSize;
  // With 16 bytes at a time, looking up single bytes is as fast.
  if (!kHasVector32 || size < kRowsFrom) return kPortableKernels.lookUpBytes(target, source, size, table);
  UnitRows rows;
  split(table, rows);
  const auto* const lowerHigh = rows.hasHigh[0] ? rows.high.rows : nullptr;
  const auto* const upperHigh = rows.hasHigh[1] ? rows.high.rows + kHalf : nullptr;
  std::size_t i = 0;
  for (; i + kStep <= size; i += kStep) {
    V::Bytes low[2], high[2];
    lookUpRows<V>(rows.low, lowerHigh, upperHigh, V::load(source + i), V::load(source + i + V::kSize), low,
                  high);
    for (std::size_t k = 0; k < 2; ++k)
      V::interleave(target + (i + k * V::kSize) * kUnitSize, low[k], high[k]);
  }
  kPortableKernels.lookUpBytes(target + i * kUnitSize, source + i, size - i, table);
}

/// Units below 100 are looked up in the page that the table has for them, others one by one.
VEL_VECTOR void mapUnits(char* target, const char* source, std::size_t count,
                         const unsigned char* table) noexcept {
  using V = Widest;
  constexpr std::size_t kStep = 2 * V::kSize;
  if (!kHasVector32 || count < kRowsFrom) return kPortableKernels.mapUnits(target, source, count, table);
  ByteRows rows;
  __m128i previous = _mm_setzero_si128();
  const unsigned char* const page = table + table[0] * 256U;
  for (std::size_t row = 0; row < kRows; ++row)
    setRow(rows, row, _mm_loadu_si128(reinterpret_cast<const __m128i*>(page + row * kRow)), previous);
  std::size_t i = 0;
  for (; i + kStep <= count; i += kStep) {
    V::Words units[4], all{};
    for (std::size_t k = 0; k < 4; ++k) {
      units[k] = V::loadWords(source + i * kUnitSize + k * V::kSize);
      all |= units[k];
    }
    if (V::signs((all & words<V, 0xFF00>()) != 0) != 0) {
      kPortableKernels.mapUnits(target + i, source + i * kUnitSize, kStep, table);
      continue;
    }
    V::Bytes mapped[2], none[2];
    lookUpRows<V>(rows, nullptr, nullptr, V::pack(units[0], units[1]), V::pack(units[2], units[3]), mapped,
                  none);
    store(target + i, mapped[0]);
    store(target + i + V::kSize, mapped[1]);
  }
  kPortableKernels.mapUnits(target + i, source + i * kUnitSize, count - i, table);
}

}  // namespace

}  // namespace vel::codepage
