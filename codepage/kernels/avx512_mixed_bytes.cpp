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

#include <algorithm>

#include "codepage/tables/conversion_tables.h"

namespace vel::codepage {

using namespace vectors;

namespace {

/// A table of 256 bytes.
struct ByteTable {
  __m512i part[4];
};

VEL_VECTOR inline ByteTable loadBytes(const std::uint8_t* values) {
  return {{load(values), load(values + 64), load(values + 128), load(values + 192)}};
}

constexpr std::uint64_t kEven = 0x5555555555555555;

/// The bytes of a block that begin a character, and those of them that are lead bytes. The trail byte of a
/// lead byte at the very end is the next block's first byte.
struct Starts {
  std::uint64_t all;
  std::uint64_t pairs;
};

/// State that is carried from one block to the next.
struct Carry {
  std::uint64_t isDouble;  ///< 0 or 1, as `trail`, so that masks can use them without a branch
  std::uint64_t trail;     ///< 1 if the first byte of the block is a trail byte
};

/// Finds the pairs in text with lead bytes. A trail byte can look like a lead byte, so only the parity within
/// a row of such bytes tells them apart: the first of a row is a lead byte, the second its trail byte, and so
/// on; the byte after the row is a trail byte if the row is odd.
///
///   bytes     A L L L x B L y        L: can be a lead byte
///   rows      . 1 1 1 . . 1 .
///   pairs     . 1 . 1 . . 1 .        every second one of each row, from its start
///
/// All rows are handled by one subtraction: the borrow runs from the start of each row to its end, and
/// compared with a mask of alternating bits it tells the parity of each position. simdjson finds backslash
/// escapes in the same way (json_escape_scanner.h).
inline Starts findPairs(std::uint64_t canLead, Carry& carry) {
  const std::uint64_t rows = canLead & ~carry.trail;
  const std::uint64_t ends = ((rows << 1 | ~kEven) - rows) ^ ~kEven;
  const Starts starts{~(ends ^ (rows | carry.trail)), ends & rows};
  carry.trail = starts.pairs >> 63;
  return starts;
}

/// Returns a mask of the lowest `count` bits.
inline std::uint64_t lowest(std::size_t count) {
  return count < kBlock ? (1ULL << count) - 1 : ~0ULL;
}

/// Finds the characters in text with shifts, run by run. Within a run of pairs, shift-in counts only in the
/// position of a lead byte.
inline Starts findRuns(std::uint64_t shiftOut, std::uint64_t shiftIn, Carry& carry) {
  Starts starts{0, 0};
  for (std::size_t at = carry.trail; at < kBlock; ++at, carry.isDouble ^= 1) {
    const std::uint64_t shifts = carry.isDouble != 0 ? shiftIn >> at & kEven : shiftOut >> at;
    const auto run = std::min(static_cast<std::size_t>(std::countr_zero(shifts)), kBlock - at);
    starts.all |= (lowest(run) & (carry.isDouble != 0 ? kEven : ~0ULL)) << at;
    if (carry.isDouble != 0) starts.pairs |= (lowest(run) & kEven) << at;
    at += run;
    if (at == kBlock) break;
  }
  carry.trail = starts.pairs >> 63;
  return starts;
}

/// Returns in each bit the exclusive or of all bits up to it. Carry-less multiplication by all ones computes
/// that, as simdjson does to find what is inside quotes.
VEL_VECTOR inline std::uint64_t prefixXor(std::uint64_t bits) {
  const __m128i product =
      _mm_clmulepi64_si128(_mm_set_epi64x(0, static_cast<long long>(bits)), _mm_set1_epi8(-1), 0);
  return static_cast<std::uint64_t>(_mm_cvtsi128_si64(product));
}

/// Returns the same result as findRuns, without a loop. That requires that shift-out and shift-in alternate
/// and that no shift divides a pair; otherwise it calls findRuns.
///
///   bytes       a O p q r s I b      O: shift-out, I: shift-in
///   in | out    . 1 . . . . 1 .
///   prefix xor  . 1 1 1 1 1 . .      the mode after each byte
///   pairBytes   . . 1 1 1 1 . .
///   pairs       . . 1 . 1 . . .
VEL_VECTOR inline Starts findAlternatingRuns(std::uint64_t shiftOut, std::uint64_t shiftIn, Carry& carry) {
  const std::uint64_t in = shiftIn & ~carry.trail;
  const std::uint64_t out = shiftOut & ~carry.trail;
  const std::uint64_t isDoubleAfter = prefixXor(in | out) ^ (0 - carry.isDouble);
  const std::uint64_t isDouble = isDoubleAfter << 1 | carry.isDouble;
  const std::uint64_t pairBytes = isDouble & ~in & ~carry.trail;
  // If no pair is divided, runs are of even length, and every second byte of all runs together is a lead
  // byte.
  const std::uint64_t pairs = _pdep_u64(kEven, pairBytes);
  const std::uint64_t trails = (pairBytes & ~pairs) | carry.trail;
  const std::uint64_t mayEnd = (trails | out) << 1 | carry.isDouble;
  if (((in & ~mayEnd) | (out & isDouble)) != 0) [[unlikely]]
    return findRuns(shiftOut, shiftIn, carry);
  carry = {isDoubleAfter >> 63, pairs >> 63};
  return {pairs | ~(isDouble | out), pairs};
}

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
