// Mixed single and double bytes to UCS-2 by vectors, in three steps for each block of 64 bytes:
//
// 1. Which bytes begin a character? Each character depends on the one before, which seems to require a loop.
//    Arithmetic on masks of 64 bits answers it for a block at once: see findPairs and findAlternatingRuns.
//    The next block is told whether its first byte is a trail byte, and the mode.
// 2. Which entry of the table has each character? Two vectors have page numbers and bytes within the page for
//    every byte of the block; those of bytes that begin a character are compressed.
// 3. The units are read from the table one by one. Gathering them by a vector instruction is not faster.
#include "codepage/kernels/avx512_vectors.h"

#if defined(__x86_64__)

#include "codepage/kernels/mixed_runs.h"
#include "codepage/tables/conversion_tables.h"

namespace vel::codepage {

using namespace vectors;

namespace {

/// Writes the units at `indexes`, which are read four at a time. The count is rounded up to eight: the caller
/// has room for a whole block.
inline void writeIndexedUnits(char* target, const std::uint16_t* units, const std::uint16_t* indexes,
                              std::size_t count) {
  constexpr std::size_t kStep = 8;
  for (std::size_t i = 0; i < count; i += kStep)
    for (std::size_t k = i; k < i + kStep; k += 4) {
      std::uint64_t four;
      std::memcpy(&four, indexes + k, sizeof four);
      for (std::size_t j = 0; j < 4; ++j)
        writeUnit(target + (k + j) * kUnitSize, toHostOrder(units[four >> 16 * j & 0xFFFF]));
    }
}

/// Decodes the characters that begin in a block. The index of a unit, counted from the table's first page,
/// has the page as its high byte and the byte within the page as its low byte.
VEL_VECTOR inline void decodeBlock(Cursor& cursor, const DoubleByteTable& table, const ByteTable& pages,
                                   __m512i block, const Starts& starts) {
  alignas(64) std::uint16_t indexes[kBlock];
  const __m512i high =
      _mm512_mask_sub_epi8(bytes(int{kSingleBytesPage}), starts.pairs, lookUp(pages.part, block), bytes(1));
  const __m512i low = _mm512_mask_mov_epi8(block, starts.pairs, load(cursor.source + 1));
  storeUnits(reinterpret_cast<char*>(indexes), _mm512_maskz_compress_epi8(starts.all, low),
             _mm512_maskz_compress_epi8(starts.all, high));
  const auto count = static_cast<std::size_t>(std::popcount(starts.all));
  writeIndexedUnits(cursor.target, table.pages[0], indexes, count);
  cursor.source += kBlock;
  cursor.target += count * kUnitSize;
}

VEL_VECTOR inline bool hasBlock(const Cursor& cursor) {
  return cursor.sourceSize() > kBlock && cursor.targetSize() >= kBlock * kUnitSize;
}

}  // namespace

VEL_VECTOR void vectors::decodeMixed(Cursor& cursor, const DoubleByteTable& table) noexcept {
  const ByteTable leads = loadBytes(table.leadBytes);
  const ByteTable pages = loadBytes(table.pageNumbers);
  Cursor local = cursor;
  Carry carry{};
  while (hasBlock(local)) {
    const __m512i block = load(local.source);
    const __m512i isLead = lookUp(leads.part, block);
    decodeBlock(local, table, pages, block, findPairs(_mm512_test_epi8_mask(isLead, isLead), carry));
  }
  local.source += carry.trail;
  cursor = local;
}

VEL_VECTOR void vectors::decodeShifted(Cursor& cursor, const DoubleByteTable& table,
                                       bool& isDouble) noexcept {
  const ByteTable pages = loadBytes(table.pageNumbers);
  Cursor local = cursor;
  Carry carry{isDouble, 0};
  while (hasBlock(local)) {
    const __m512i block = load(local.source);
    const Starts starts = findAlternatingRuns(_mm512_cmpeq_epi8_mask(block, bytes(kShiftOut)),
                                              _mm512_cmpeq_epi8_mask(block, bytes(kShiftIn)), carry);
    const __mmask64 nextLines =
        _mm512_mask_cmpeq_epi8_mask(starts.all & ~starts.pairs, block, bytes(kNextLineByte));
    decodeBlock(local, table, pages, _mm512_mask_mov_epi8(block, nextLines, bytes(kLineFeedByte)), starts);
  }
  local.source += carry.trail;
  cursor = local;
  isDouble = carry.isDouble != 0;
}

}  // namespace vel::codepage

#endif
