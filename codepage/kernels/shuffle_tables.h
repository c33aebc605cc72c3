// Shuffles that compress: for each mask of lanes, the bytes to move together at the start. Processors before
// AVX-512 have no instruction for that, but one that shuffles the bytes of a vector (PSHUFB, SSSE3), and the
// shuffle is looked up by the mask. The method is that of D. Lemire and W. Mula, "Transcoding billions of
// Unicode characters per second with SIMD instructions" (2022).
#pragma once

#include <array>
#include <cstdint>

namespace vel::codepage {

/// The source byte of each byte. A byte with the top bit becomes 0.
using Shuffle = std::array<std::uint8_t, 16>;
using ShuffleTable = std::array<Shuffle, 256>;

/// Moves the units whose bits are set to the front. The mask has a bit for each of 8 units.
alignas(64) extern const ShuffleTable kCompressUnits;
/// Drops the high byte of the units whose bits are set. The mask has a bit for each of 8 units.
alignas(64) extern const ShuffleTable kCompressTwoBytes;
/// Encoded characters of one to three bytes, from four lanes of four bytes: last byte, unused byte, first of
/// three bytes, last but one. The mask has a bit for each character of one byte, then one for each of at most
/// two bytes.
alignas(64) extern const ShuffleTable kCompressThreeBytes;

/// A vector of equal lanes, in memory and not constant: g++ would build a constant in general registers, and
/// that anew for each block where vector registers are few.
template <auto value>
struct Lanes {
  using Vector = std::array<decltype(value), 32 / sizeof value>;

  alignas(32) static inline constinit Vector vector = [] {
    Vector lanes;
    lanes.fill(value);
    return lanes;
  }();
};

}  // namespace vel::codepage
