// Finds the characters of mixed single and double bytes, as masks with a bit for each of 64 bytes. Included
// by sources that have defined VEL_VECTOR, and VEL_VECTOR_BMI2 if that includes BMI2 and carry-less
// multiplication.
#pragma once

#include <immintrin.h>

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>

#include "codepage/kernels/kernels.h"

namespace vel::codepage {

namespace {

constexpr std::size_t kMaskBits = 64;

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

/// Finds the characters in text with shifts, run by run. Within a run of pairs, shift-in counts only in the
/// position of a lead byte.
inline Starts findRuns(std::uint64_t shiftOut, std::uint64_t shiftIn, Carry& carry) {
  Starts starts{0, 0};
  for (std::size_t at = carry.trail; at < kMaskBits; ++at, carry.isDouble ^= 1) {
    const std::uint64_t shifts = carry.isDouble != 0 ? shiftIn >> at & kEven : shiftOut >> at;
    const auto run = std::min(static_cast<std::size_t>(std::countr_zero(shifts)), kMaskBits - at);
    starts.all |= (lowest(run) & (carry.isDouble != 0 ? kEven : ~0ULL)) << at;
    if (carry.isDouble != 0) starts.pairs |= (lowest(run) & kEven) << at;
    at += run;
    if (at == kMaskBits) break;
  }
  carry.trail = starts.pairs >> 63;
  return starts;
}

/// Returns in each bit the exclusive or of all bits up to it. Carry-less multiplication by all ones computes
/// that, as simdjson does to find what is inside quotes.
VEL_VECTOR inline std::uint64_t prefixXor(std::uint64_t bits) {
#if defined(VEL_VECTOR_CLMUL)
  const __m128i product =
      _mm_clmulepi64_si128(_mm_set_epi64x(0, static_cast<long long>(bits)), _mm_set1_epi8(-1), 0);
  return static_cast<std::uint64_t>(_mm_cvtsi128_si64(product));
#else
  for (unsigned int distance = 1; distance < kMaskBits; distance *= 2) bits ^= bits << distance;
  return bits;
#endif
}

/// Returns every second bit of each run of ones, from its first one on. A run that begins at an even position
/// has its even bits, others have their odd ones. Adding the first bit of a run carries through all of it.
inline std::uint64_t everySecond(std::uint64_t runs) {
  const std::uint64_t evenStarts = runs & ~(runs << 1) & kEven;
  const std::uint64_t evenRuns = runs & ~(runs + evenStarts);
  return (evenRuns & kEven) | (runs & ~evenRuns & ~kEven);
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
  const std::uint64_t pairs = everySecond(pairBytes);
  const std::uint64_t trails = (pairBytes & ~pairs) | carry.trail;
  const std::uint64_t mayEnd = (trails | out) << 1 | carry.isDouble;
  if (((in & ~mayEnd) | (out & isDouble)) != 0) [[unlikely]]
    return findRuns(shiftOut, shiftIn, carry);
  carry = {isDoubleAfter >> 63, pairs >> 63};
  return {pairs | ~(isDouble | out), pairs};
}

}  // namespace

}  // namespace vel::codepage
