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

/// The characters of a block, and those of its bytes that are to become line feeds.
struct MixedBlock {
  Starts starts;
  std::uint64_t nextLines;
};

/// Appends the characters that begin in a block to `end`, for writeUnits.
VEL_VECTOR inline void appendCharacters(char*& end, const char* source, std::uint8_t singleLead,
                                        const MixedBlock& block) {
  using V = Widest;
  const V::Bytes single = V::Bytes{} + singleLead;
  for (std::size_t i = 0; i < kMaskBits; i += V::kSize) {
    const V::Bytes bytesHere = V::load(source + i);
    const V::Bytes folded = V::expand(block.nextLines >> i);
    const V::Bytes isPair = V::expand(block.starts.pairs >> i);
    const V::Bytes byte = (bytesHere & ~folded) | (folded & bytes<V, kLineFeedByte>());
    const V::Bytes last = (isPair & V::load(source + i + 1)) | (byte & ~isPair);
    const V::Bytes lead = (isPair & bytesHere) | (single & ~isPair);
    V::appendLanes(end, last, lead, static_cast<std::uint32_t>(block.starts.all >> i));
  }
}

/// Reading back what was just written with other sizes would wait for the stores, so this many blocks are
/// written before they are read.
constexpr std::size_t kBlocksAtOnce = 8;

VEL_VECTOR inline std::size_t mixedBlocks(const Cursor& cursor) {
  // The byte after the last block may be needed.
  const std::size_t source = cursor.sourceSize() == 0 ? 0 : (cursor.sourceSize() - 1) / kMaskBits;
  return std::min({kBlocksAtOnce, source, cursor.targetSize() / (kMaskBits * kUnitSize)});
}

/// Decodes blocks, whose characters `find(source)` returns.
template <typename Find>
VEL_VECTOR inline void decodeMixedBlocks(Cursor& cursor, const LeadPages& pages, Find find) {
  // A step writes 16 bytes, and none begins after the last character.
  alignas(32) char characters[kBlocksAtOnce * kMaskBits * kUnitSize + 16];
  Cursor local = cursor;
  while (std::size_t blocks = mixedBlocks(local)) {
    char* end = characters;
    for (; blocks > 0; --blocks, local.source += kMaskBits)
      appendCharacters(end, local.source, pages.single, find(local.source));
    const auto count = static_cast<std::size_t>(end - characters) / kUnitSize;
    writeUnits(local.target, pages, characters, count);
    local.target += count * kUnitSize;
  }
  cursor = local;
}

VEL_VECTOR void decodeMixed(Cursor& cursor, const DoubleByteTable& table) noexcept {
  // 0 marks single bytes, so it must not be a lead byte.
  if (mixedBlocks(cursor) == 0 || table.leadBytes[0] != 0) return;
  LeadPages pages;
  setPages(pages, table, 0);
  const ByteSet leads = setOf(table.leadBytes);
  Carry carry{};
  decodeMixedBlocks(cursor, pages, [&](const char* source) VEL_VECTOR {
    return MixedBlock{findPairs(findAll(source, leads), carry), 0};
  });
  cursor.source += carry.trail;
}

VEL_VECTOR void decodeShifted(Cursor& cursor, const DoubleByteTable& table, bool& isDouble) noexcept {
  if (mixedBlocks(cursor) == 0) return;
  LeadPages pages;
  // In the place of a lead byte, shift-in ends the pairs.
  setPages(pages, table, kShiftIn);
  Carry carry{isDouble, 0};
  decodeMixedBlocks(cursor, pages, [&](const char* source) VEL_VECTOR {
    const Starts starts = findAlternatingRuns(findAll<kShiftOut>(source), findAll<kShiftIn>(source), carry);
    return MixedBlock{starts, findAll<kNextLineByte>(source) & starts.all & ~starts.pairs};
  });
  cursor.source += carry.trail;
  isDouble = carry.isDouble != 0;
}

}  // namespace

}  // namespace vel::codepage
