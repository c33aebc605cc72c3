// Mixed single and double bytes to UCS-2 for SSE4.1 and AVX2, in the steps of avx512_mixed_bytes.cpp: which
// bytes begin a character, which entry of the table it has, and the units. Without an instruction that looks
// up 64 page numbers at once, the second step only puts lead and trail bytes side by side, and the third one
// looks up the page as well. Single bytes get a lead byte that no pair has.
#pragma once

#include "codepage/conversion.h"
#include "codepage/kernels/block_vectors.h"
#include "codepage/kernels/kernels.h"
#include "codepage/kernels/mixed_runs.h"
#include "codepage/tables/conversion_tables.h"

namespace vel::codepage {

namespace {

/// A set of bytes: for each value of a byte's lowest four bits, a bit for each value of the other four, of
/// which the second half is for bytes from 80 on. See W. Mula, "SIMD-ized check which bytes are in a set".
struct ByteSet {
  __m128i halves[2];
};

VEL_VECTOR inline ByteSet setOf(const std::uint8_t* flags) {
  ByteSet set{};
  for (int row = 0; row < 16; ++row) {
    const __m128i none = _mm_cmpeq_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(flags + row * 16)),
                                        _mm_setzero_si128());
    const __m128i bit = _mm_andnot_si128(none, _mm_set1_epi8(static_cast<char>(1 << row % 8)));
    set.halves[row / 8] = _mm_or_si128(set.halves[row / 8], bit);
  }
  return set;
}

VEL_VECTOR inline std::uint32_t findIn(const ByteSet& set, __m128i bytes) {
  const __m128i bits = _mm_setr_epi8(1, 2, 4, 8, 16, 32, 64, -128, 1, 2, 4, 8, 16, 32, 64, -128);
  const __m128i low = _mm_and_si128(bytes, _mm_set1_epi8(0x0F));
  const __m128i high = _mm_and_si128(_mm_srli_epi16(bytes, 4), _mm_set1_epi8(0x0F));
  const __m128i row =
      _mm_blendv_epi8(_mm_shuffle_epi8(set.halves[0], low), _mm_shuffle_epi8(set.halves[1], low), bytes);
  const __m128i bit = _mm_shuffle_epi8(bits, high);
  const __m128i isIn = _mm_cmpeq_epi8(_mm_and_si128(row, bit), bit);
  return static_cast<std::uint32_t>(_mm_movemask_epi8(isIn));
}

/// Returns a mask of the 64 bytes of a block that are in the set, or that have a value.
VEL_VECTOR inline std::uint64_t findAll(const char* source, const ByteSet& set) {
  std::uint64_t mask = 0;
  for (std::size_t i = 0; i < kMaskBits; i += 16)
    mask |= std::uint64_t{findIn(set, loadAs<__m128i>(source + i))} << i;
  return mask;
}
template <std::uint8_t value>
VEL_VECTOR inline std::uint64_t findAll(const char* source) {
  using V = Widest;
  std::uint64_t mask = 0;
  for (std::size_t i = 0; i < kMaskBits; i += V::kSize) {
    const auto isEqual = V::load(source + i) == bytes<V, value>();
    mask |= std::uint64_t{V::signs(reinterpret_cast<V::Bytes>(isEqual))} << i;
  }
  return mask;
}

/// The pages of a table by lead byte, and the page of single bytes by the one that pairs do not have.
struct LeadPages {
  const std::uint16_t* units;
  std::uint8_t single;
  std::uint8_t numbers[256];
};

VEL_VECTOR inline void setPages(LeadPages& pages, const DoubleByteTable& table, std::uint8_t single) {
  pages.units = table.pages[0];
  pages.single = single;
  for (std::size_t i = 0; i < 256; ++i)
    pages.numbers[i] = static_cast<std::uint8_t>(table.pageNumbers[i] - 1);
  pages.numbers[single] = kSingleBytesPage;
}

/// Writes `count` units; the count is rounded up to four. The low byte of a character is its last one.
inline void writeUnits(char* target, const LeadPages& pages, const char* characters, std::size_t count) {
  constexpr std::size_t kStep = 4;
  const std::uint16_t* const units = pages.units;
  for (std::size_t i = 0; i < count; i += kStep) {
    std::uint64_t four;
    std::memcpy(&four, characters + i * kUnitSize, sizeof four);
    for (std::size_t k = 0; k < kStep; ++k) {
      const std::size_t page = pages.numbers[four >> (16 * k + 8) & 0xFF];
      writeUnit(target + (i + k) * kUnitSize, toHostOrder(units[page << 8 | (four >> 16 * k & 0xFF)]));
    }
  }
}

/// Decodes the characters that begin in a block.
VEL_VECTOR inline void decodeMixedBlock(Cursor& cursor, const LeadPages& pages, const Starts& starts,
                                        std::uint64_t nextLines) {
  using V = Widest;
  // A step writes up to 16 bytes, and no step begins behind the last character.
  alignas(32) char characters[kMaskBits * kUnitSize + 16];
  char* end = characters;
  const V::Bytes single = V::Bytes{} + pages.single;
  for (std::size_t i = 0; i < kMaskBits; i += V::kSize) {
    const V::Bytes block = V::load(cursor.source + i);
    const V::Bytes folded = V::expand(nextLines >> i);
    const V::Bytes isPair = V::expand(starts.pairs >> i);
    const V::Bytes byte = (block & ~folded) | (folded & bytes<V, kLineFeedByte>());
    const V::Bytes last = (isPair & V::load(cursor.source + i + 1)) | (byte & ~isPair);
    const V::Bytes lead = (isPair & block) | (single & ~isPair);
    V::appendLanes(end, last, lead, static_cast<std::uint32_t>(starts.all >> i));
  }
  const auto count = static_cast<std::size_t>(end - characters) / kUnitSize;
  writeUnits(cursor.target, pages, characters, count);
  cursor.source += kMaskBits;
  cursor.target += count * kUnitSize;
}

VEL_VECTOR inline bool hasMixedBlock(const Cursor& cursor) {
  return cursor.sourceSize() > kMaskBits && cursor.targetSize() >= kMaskBits * kUnitSize;
}

VEL_VECTOR void decodeMixed(Cursor& cursor, const DoubleByteTable& table) noexcept {
  // 0 marks single bytes, so it must not be a lead byte.
  if (!hasMixedBlock(cursor) || table.leadBytes[0] != 0) return;
  LeadPages pages;
  setPages(pages, table, 0);
  const ByteSet leads = setOf(table.leadBytes);
  Cursor local = cursor;
  Carry carry{};
  while (hasMixedBlock(local))
    decodeMixedBlock(local, pages, findPairs(findAll(local.source, leads), carry), 0);
  local.source += carry.trail;
  cursor = local;
}

VEL_VECTOR void decodeShifted(Cursor& cursor, const DoubleByteTable& table, bool& isDouble) noexcept {
  if (!hasMixedBlock(cursor)) return;
  LeadPages pages;
  // In the place of a lead byte, shift-in ends the pairs.
  setPages(pages, table, kShiftIn);
  Cursor local = cursor;
  Carry carry{isDouble, 0};
  while (hasMixedBlock(local)) {
    const Starts starts =
        findAlternatingRuns(findAll<kShiftOut>(local.source), findAll<kShiftIn>(local.source), carry);
    const std::uint64_t nextLines = findAll<kNextLineByte>(local.source) & starts.all & ~starts.pairs;
    decodeMixedBlock(local, pages, starts, nextLines);
  }
  local.source += carry.trail;
  cursor = local;
  isDouble = carry.isDouble != 0;
}

}  // namespace

}  // namespace vel::codepage
