// UCS-2 to UTF-8 by the vectors of SSE4.1 and AVX2. Every unit gets a lane with all bytes that it can have in
// UTF-8, and the bytes that it does have are compressed, see kCompressTwoBytes and kCompressThreeBytes.
//
// A surrogate pair needs no other lane: its first unit has the first two bytes of the character, its second
// one the last two.
//
//   D83D DE00    1F600 = F0 9F 98 80    D83D: F0 9F, the bits above 2^12    DE00: 98 80, with two bits of
//   D83D
#pragma once

#include "codepage/conversion.h"
#include "codepage/kernels/block_vectors.h"
#include "codepage/kernels/kernels.h"
#include "codepage/kernels/tail.h"

namespace vel::codepage {

namespace {

/// The bytes of encoded characters, one character in each unit: the last byte, and the first of three bytes
/// (low) with the last but one (high).
template <typename V>
struct EncodedUnits {
  typename V::Words last, first;
};

/// Encodes units below 0x800.
template <typename V>
VEL_VECTOR inline void encodeUpToTwo(char*& target, typename V::Words units) {
  const auto two = units >= 0x80;
  const typename V::Words encoded = (units >> 6) | ((units & 0x3F) << 8) | 0x80C0;
  V::appendUpToTwo(target, two ? encoded : units, two);
}

template <typename V>
VEL_VECTOR inline EncodedUnits<V> encodeUnits(typename V::Words units, typename V::Words two,
                                              typename V::Words three) {
  // Three bytes have 80E0 as markers, two bytes C0 in the last but one.
  const typename V::Words markers = (three & (0xC000 ^ 0x80E0)) ^ 0xC000;
  const typename V::Words first = (units >> 12) | ((units << 2) & 0x3F00) | markers;
  return {reinterpret_cast<typename V::Choice>(two) ? (units & 0x3F) | 0x80 : units, first};
}

/// Replaces the bytes of surrogate pairs, whose lanes `high` and `low` select.
template <typename V>
VEL_VECTOR inline void encodePairs(EncodedUnits<V>& encoded, typename V::Words units,
                                   typename V::Words previous, typename V::Words high,
                                   typename V::Words low) {
  using Choice = typename V::Choice;
  // The bits of the character from 2^10 on.
  const typename V::Words bits = (units & 0x3FF) + 0x40;
  const typename V::Words firstOfHigh = (bits & 0x700) | 0xF000;
  const typename V::Words firstOfLow = ((previous & 3) << 12) | ((units << 2) & 0xF00) | 0x8000;
  encoded.first = reinterpret_cast<Choice>(high)  ? firstOfHigh
                  : reinterpret_cast<Choice>(low) ? firstOfLow
                                                  : encoded.first;
  encoded.last = reinterpret_cast<Choice>(high) ? ((bits >> 2) & 0x3F) | 0x80 : encoded.last;
}

/// Encodes a block of any units. If its last unit begins a pair, that one is left to the next block.
template <typename V>
VEL_VECTOR inline void encodeAny(Cursor& cursor, typename V::Words units) {
  using Words = typename V::Words;
  const auto asWords = [](auto choice) VEL_VECTOR { return reinterpret_cast<Words>(choice); };
  const Words surrogates = asWords((units & 0xF800) == 0xD800);
  Words invalid = asWords(units - 0xFDD0 < 0x20) | asWords(units >= 0xFFFE);
  Words high{}, low{};
  const bool hasSurrogates = V::signs(reinterpret_cast<typename V::Bytes>(surrogates)) != 0;
  if (hasSurrogates) {
    const Words next = V::loadWords(cursor.source + kUnitSize);
    const Words isHigh = asWords((units & 0xFC00) == 0xD800);
    high = isHigh & asWords((next & 0xFC00) == 0xDC00);
    low = (surrogates & ~isHigh) & V::shiftIn(isHigh);
    invalid |= surrogates & ~(high | low);
  }
  // The replacement is U+FFFF.
  units |= invalid;
  const Words two = asWords(units >= 0x80);
  const Words three = asWords(units >= 0x800) & ~(high | low);
  EncodedUnits<V> encoded = encodeUnits<V>(units, two, three);
  if (hasSurrogates) encodePairs<V>(encoded, units, V::shiftIn(units), high, low);
  V::appendUpToThree(cursor.target, encoded.last, encoded.first, reinterpret_cast<typename V::Choice>(two),
                     reinterpret_cast<typename V::Choice>(three));
  cursor.source += V::kSize;
  if (!hasSurrogates) return;
  const std::size_t rest = V::signs(reinterpret_cast<typename V::Bytes>(high)) >> (V::kSize - 1);
  cursor.source -= rest * kUnitSize;
  cursor.target -= rest * 2;
}

/// Encodes whole blocks. The last unit of the source is looked at, but may be left.
template <typename V>
VEL_VECTOR inline void encodeBlocks(Cursor& cursor) noexcept {
  // Each unit has up to three bytes, and a step writes up to four bytes more than it uses.
  constexpr std::size_t kTarget = V::kUnits * 3 + 4;
  Cursor local = cursor;
  while (local.sourceSize() >= V::kSize + kUnitSize && local.targetSize() >= kTarget) {
    const typename V::Words units = V::loadWords(local.source);
    if (V::signs((units & 0xFF80) != 0) == 0) {
      V::narrow(local.target, units);
      local.source += V::kSize;
      local.target += V::kUnits;
    } else if (V::signs((units & 0xF800) != 0) == 0) {
      encodeUpToTwo<V>(local.target, units);
      local.source += V::kSize;
    } else {
      encodeAny<V>(local, units);
    }
  }
  cursor = local;
}

VEL_VECTOR void encodeUtf8(Cursor& cursor) noexcept {
  encodeBlocks<Widest>(cursor);
  if constexpr (Widest::kSize != Vector16::kSize) encodeBlocks<Vector16>(cursor);
  constexpr std::size_t kMaxTail = Vector16::kSize + 4;
  convertTail<kMaxTail>(cursor, {&encodeBlocks<Vector16>, Vector16::kSize, kUnitSize, 1});
}

}  // namespace

}  // namespace vel::codepage
