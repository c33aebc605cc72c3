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

/// The units with one byte in UTF-8, and those with at most two.
template <typename V>
struct Lengths {
  typename V::Choice one, upToTwo;
};

template <typename V>
VEL_VECTOR inline typename V::Words asWords(typename V::Choice choice) {
  return reinterpret_cast<typename V::Words>(choice);
}
template <typename V>
VEL_VECTOR inline typename V::Choice asChoice(typename V::Words words) {
  return reinterpret_cast<typename V::Choice>(words);
}

/// Whether the bits of `mask` are those of `value`.
template <typename V, std::uint16_t mask, std::uint16_t value>
VEL_VECTOR inline typename V::Choice has(typename V::Words units) {
  if constexpr (value == 0) return (units & words<V, mask>()) == 0;
  return (units & words<V, mask>()) == words<V, value>();
}

/// Encodes units below 0x800.
template <typename V>
VEL_VECTOR inline void encodeUpToTwo(char*& target, typename V::Words units, typename V::Choice one) {
  const typename V::Words encoded = (units >> 6) | ((units & words<V, 0x3F>()) << 8) | words<V, 0x80C0>();
  V::appendUpToTwo(target, one ? units : encoded, one);
}

template <typename V>
VEL_VECTOR inline EncodedUnits<V> encodeUnits(typename V::Words units, const Lengths<V>& lengths) {
  const typename V::Words last = (units & words<V, 0x3F>()) | words<V, 0x80>();
  const typename V::Words first = (units >> 12) | ((units << 2) & words<V, 0x3F00>());
  // The markers of three bytes, or C0 in the last but one.
  const typename V::Words markers = lengths.upToTwo ? words<V, 0xC000>() : words<V, 0x80E0>();
  return {lengths.one ? units : last, first | markers};
}

/// The lanes of surrogates.
template <typename V>
struct Surrogates {
  typename V::Choice all, high;
};

/// The first and second units of pairs.
template <typename V>
struct Pairs {
  typename V::Words high, low;
};

template <typename V>
VEL_VECTOR inline Pairs<V> findPairs(const char* source, const Surrogates<V>& surrogates) {
  const typename V::Choice isLowNext = has<V, 0xFC00, 0xDC00>(V::loadWords(source + kUnitSize));
  const typename V::Words high = asWords<V>(surrogates.high), low = asWords<V>(surrogates.all) & ~high;
  return {high & asWords<V>(isLowNext), low & V::shiftIn(high)};
}

/// Replaces the bytes of surrogate pairs.
template <typename V>
VEL_VECTOR inline void encodePairs(EncodedUnits<V>& encoded, typename V::Words units, const Pairs<V>& pairs) {
  const typename V::Words previous = V::shiftIn(units);
  // The bits of the character from 2^10 on.
  const typename V::Words bits = (units & words<V, 0x3FF>()) + words<V, 0x40>();
  const typename V::Words firstOfHigh = (bits & words<V, 0x700>()) | words<V, 0xF000>();
  const typename V::Words firstOfLow =
      ((previous & words<V, 3>()) << 12) | ((units << 2) & words<V, 0xF00>()) | words<V, 0x8000>();
  const auto high = asChoice<V>(pairs.high), low = asChoice<V>(pairs.low);
  encoded.first = high ? firstOfHigh : low ? firstOfLow : encoded.first;
  encoded.last = high ? ((bits >> 2) & words<V, 0x3F>()) | words<V, 0x80>() : encoded.last;
}

/// Returns all ones in the lanes of noncharacters, which are replaced with U+FFFF.
template <typename V>
VEL_VECTOR inline typename V::Words noncharacters(typename V::Words units) {
  const auto arabic = has<V, 0xFFE0, 0>(units - words<V, 0xFDD0>());
  const auto last = (units | words<V, 1>()) == words<V, 0xFFFF>();
  return asWords<V>(arabic) | asWords<V>(last);
}

/// Encodes a block with surrogates. If its last unit begins a pair, that one is left to the next block.
template <typename V>
VEL_VECTOR inline void encodeWithPairs(Cursor& cursor, typename V::Words units, Lengths<V> lengths,
                                       const Surrogates<V>& surrogates) {
  const Pairs<V> pairs = findPairs<V>(cursor.source, surrogates);
  const typename V::Words inPair = pairs.high | pairs.low;
  units |= asWords<V>(surrogates.all) & ~inPair;
  lengths.upToTwo = asChoice<V>(asWords<V>(lengths.upToTwo) | inPair);
  EncodedUnits<V> encoded = encodeUnits<V>(units, lengths);
  encodePairs<V>(encoded, units, pairs);
  V::appendUpToThree(cursor.target, encoded.last, encoded.first, V::lengthsOf(lengths.one, lengths.upToTwo));
  const std::size_t isBegun = V::signs(asChoice<V>(pairs.high)) >> (V::kSize - 1);
  cursor.source -= isBegun * kUnitSize;
  cursor.target -= isBegun * 2;
}

/// Encodes a block that is not ASCII.
template <typename V>
VEL_VECTOR inline void encodeBlock(Cursor& cursor, typename V::Words units) {
  const Lengths<V> lengths{has<V, 0xFF80, 0>(units), has<V, 0xF800, 0>(units)};
  const std::uint32_t masks = V::lengthsOf(lengths.one, lengths.upToTwo);
  constexpr std::uint32_t kUpToTwo = V::kSize == 32 ? 0xF0F0F0F0 : 0xF0F0;
  if ((masks & kUpToTwo) == kUpToTwo) return encodeUpToTwo<V>(cursor.target, units, lengths.one);
  units |= noncharacters<V>(units);
  const Surrogates<V> surrogates{has<V, 0xF800, 0xD800>(units), has<V, 0xFC00, 0xD800>(units)};
  if (V::signs(surrogates.all) != 0) return encodeWithPairs<V>(cursor, units, lengths, surrogates);
  const EncodedUnits<V> encoded = encodeUnits<V>(units, lengths);
  V::appendUpToThree(cursor.target, encoded.last, encoded.first, masks);
}

/// Encodes pairs of blocks as long as they are ASCII.
template <typename V>
VEL_VECTOR inline void encodeAsciiRun(Cursor& cursor) {
  while (cursor.sourceSize() >= 2 * V::kSize && cursor.targetSize() >= 2 * V::kUnits) {
    const typename V::Words first = V::loadWords(cursor.source);
    const typename V::Words second = V::loadWords(cursor.source + V::kSize);
    if (!V::areAscii(first | second)) return;
    V::narrow(cursor.target, first, second);
    cursor.source += 2 * V::kSize;
    cursor.target += 2 * V::kUnits;
  }
}

/// Encodes whole blocks. The last unit of the source is looked at, but may be left.
template <typename V>
VEL_VECTOR inline void encodeBlocks(Cursor& cursor) noexcept {
  // Each unit has up to three bytes, and a step writes up to four bytes more than it uses.
  constexpr std::size_t kTarget = V::kUnits * 3 + 4;
  Cursor local = cursor;
  while (local.sourceSize() >= V::kSize + kUnitSize && local.targetSize() >= kTarget) {
    const typename V::Words units = V::loadWords(local.source);
    if (V::areAscii(units)) {
      V::narrow(local.target, units, units);
      local.source += V::kSize;
      local.target += V::kUnits;
      encodeAsciiRun<V>(local);
    } else {
      encodeBlock<V>(local, units);
      local.source += V::kSize;
    }
  }
  cursor = local;
}

VEL_VECTOR void encodeUtf8(Cursor& cursor) noexcept {
  encodeBlocks<Widest>(cursor);
  if constexpr (kHasVector32) encodeBlocks<Vector16>(cursor);
  constexpr std::size_t kMaxTail = Vector16::kSize + 4;
  convertTail<kMaxTail>(cursor, {&encodeBlocks<Vector16>, Vector16::kSize, kUnitSize, 1});
}

}  // namespace

}  // namespace vel::codepage
