// UTF-8 to UCS-2 by the vectors of SSE4.1 and AVX2, in the way of avx512_utf8_decoder.cpp: every byte is
// decoded as if a character began there, and the units of those bytes that do begin one are compressed.
//
// Low and high bytes of the units are computed separately, as "planes" of the same size as the source:
//
//   bytes       41  C3 A4  E2 82 AC
//   low bytes   41  E4 ..  AC .. ..       of two bytes: first << 6 | second; of three: second << 6 | third
//   high bytes  00  00 ..  20 .. ..
//
// Trail bytes get the low surrogate of a character of four bytes whose second byte they would be. The lanes
// of such second bytes are used, those of all other trail bytes are not.
#pragma once

#include "codepage/conversion.h"
#include "codepage/kernels/block_vectors.h"
#include "codepage/kernels/kernels.h"
#include "codepage/kernels/tail.h"

namespace vel::codepage {

namespace {

/// What a block of UTF-8 leaves to the next one, as bits of the next one's first bytes.
struct Utf8Carry {
  std::uint32_t trails;        ///< must be trail bytes
  std::uint32_t lowSurrogate;  ///< has a low surrogate in its lane
};

/// A block, the bytes after each byte, and the bytes after these.
template <typename V>
struct Utf8Window {
  typename V::Bytes x, y, z;
};

/// The bytes of a block by their kind.
struct Utf8Leads {
  std::uint32_t any;    ///< all but ASCII
  std::uint32_t trail;  ///< 80 to BF
  std::uint32_t three;  ///< E0 and more
  std::uint32_t four;   ///< F0 and more
};

template <typename V>
struct Planes {
  typename V::Bytes low, high;
};

template <typename V>
VEL_VECTOR inline Utf8Leads findLeads(typename V::Bytes x, std::uint32_t any) {
  const std::uint32_t lead = any & V::signs(x << 1);
  const std::uint32_t three = lead & V::signs(x << 2);
  return {any, any & ~lead, three, three & V::signs(x << 3)};
}

/// Decodes characters of one and two bytes.
template <typename V>
VEL_VECTOR inline Planes<V> decodeUpToTwo(const Utf8Window<V>& at) {
  const auto isAscii = reinterpret_cast<typename V::SignedBytes>(at.x) >= 0;
  const typename V::Bytes zero{};
  return {isAscii ? at.x : (at.x << 6) | (at.y & bytes<V, 0x3F>()),
          isAscii ? zero : (at.x >> 2) & bytes<V, 7>()};
}

/// Decodes characters of up to three bytes, and the low surrogates.
template <typename V>
VEL_VECTOR inline Planes<V> decodeUpToThree(const Utf8Window<V>& at) {
  const typename V::Bytes zero{};
  const auto isAscii = reinterpret_cast<typename V::SignedBytes>(at.x) >= 0;
  const auto isTwo = (at.x & bytes<V, 0xE0>()) == bytes<V, 0xC0>();
  const typename V::Bytes low = ((isTwo ? at.x : at.y) << 6) | ((isTwo ? at.y : at.z) & bytes<V, 0x3F>());
  const typename V::Bytes high =
      isTwo ? (at.x >> 2) & bytes<V, 7>() : (at.x << 4) | ((at.y >> 2) & bytes<V, 0xF>());
  return {isAscii ? at.x : low, isAscii ? zero : high};
}

/// Puts the surrogates of characters of four bytes in place. The high one is D7C0 + (character >> 10),
/// because D7C0 is D800 - (10000 >> 10): UTF-16 subtracts 10000 from the character. Its low byte may carry.
template <typename V>
VEL_VECTOR inline void addSurrogates(const Utf8Window<V>& at, Planes<V>& planes) {
  const auto isFour = at.x >= bytes<V, 0xF0>();
  const auto isTrail = (at.x & bytes<V, 0xC0>()) == bytes<V, 0x80>();
  const typename V::Bytes middle = (at.y << 2) | ((at.z >> 4) & bytes<V, 3>());
  const typename V::Bytes carry = reinterpret_cast<typename V::Bytes>(middle >= bytes<V, 0x40>());
  planes.low = isFour ? middle + bytes<V, 0xC0>() : planes.low;
  planes.high = isFour    ? (at.x & bytes<V, 7>()) + bytes<V, 0xD7>() - carry
                : isTrail ? ((at.y >> 2) & bytes<V, 3>()) | bytes<V, 0xDC>()
                          : planes.high;
}

/// Whether characters begin with F0 to F7 and are not overlong. Others are left to the portable decoder.
template <typename V>
VEL_VECTOR inline bool areFourBytes(const Utf8Window<V>& at) {
  const typename V::Bytes isLong = reinterpret_cast<typename V::Bytes>(at.x >= bytes<V, 0xF8>());
  const typename V::Bytes isOverlong =
      reinterpret_cast<typename V::Bytes>((at.x == bytes<V, 0xF0>()) & (at.y < bytes<V, 0x90>()));
  return V::signs(isLong | isOverlong) == 0;
}

/// Decodes the characters that begin in the block, and returns true; returns false, with nothing done, if a
/// sequence is ill-formed.
template <typename V>
VEL_VECTOR inline bool decodeBlock(const Utf8Window<V>& at, std::uint32_t any, Utf8Carry& carry,
                                   char*& target) {
  const Utf8Leads leads = findLeads<V>(at.x, any);
  const std::uint64_t lead = leads.any & ~leads.trail;
  const std::uint64_t three = leads.three, four = leads.four;
  const std::uint64_t trails = carry.trails | lead << 1 | three << 2 | four << 3;
  constexpr std::uint64_t kAll = (1ULL << V::kSize) - 1;
  if ((trails & kAll) != leads.trail) return false;
  if (three == 0 && carry.lowSurrogate == 0) {
    const Planes<V> planes = decodeUpToTwo<V>(at);
    V::appendLanes(target, planes.low, planes.high, ~leads.trail);
  } else {
    Planes<V> planes = decodeUpToThree<V>(at);
    std::uint32_t lanes = ~leads.trail;
    if ((four | carry.lowSurrogate) != 0) {
      if (!areFourBytes<V>(at)) return false;
      addSurrogates<V>(at, planes);
      lanes |= leads.four << 1 | carry.lowSurrogate;
    }
    V::appendLanes(target, planes.low, planes.high, lanes);
  }
  carry = {static_cast<std::uint32_t>(trails >> V::kSize), leads.four >> (V::kSize - 1)};
  return true;
}

/// Takes back the units of a character that the blocks so far have only begun.
inline void dropLast(Cursor& cursor) {
  std::size_t size = 1;
  while ((static_cast<unsigned char>(*--cursor.source) & 0xC0) == 0x80) ++size;
  const bool isPair = static_cast<unsigned char>(*cursor.source) >= 0xF0 && size > 1;
  cursor.target -= isPair ? 2 * kUnitSize : kUnitSize;
}

/// Decodes pairs of blocks as long as they are ASCII.
template <typename V>
VEL_VECTOR inline void decodeAsciiRun(Cursor& cursor) {
  while (cursor.sourceSize() >= 2 * V::kSize && cursor.targetSize() >= 2 * V::kSize * kUnitSize) {
    const typename V::Bytes first = V::load(cursor.source), second = V::load(cursor.source + V::kSize);
    if (V::signs(first | second) != 0) return;
    V::widen(cursor.target, first);
    V::widen(cursor.target + V::kSize * kUnitSize, second);
    cursor.source += 2 * V::kSize;
    cursor.target += 2 * V::kSize * kUnitSize;
  }
}

/// Decodes whole blocks. The last two bytes of the source are looked at, but begin no character.
template <typename V>
VEL_VECTOR inline void decodeBlocks(Cursor& cursor) noexcept {
  Cursor local = cursor;
  Utf8Carry carry{};
  while (local.sourceSize() >= V::kSize + 2 && local.targetSize() >= V::kSize * kUnitSize) {
    const typename V::Bytes block = V::load(local.source);
    const std::uint32_t any = V::signs(block);
    if ((any | carry.trails) == 0) {
      V::widen(local.target, block);
      local.source += V::kSize;
      local.target += V::kSize * kUnitSize;
      decodeAsciiRun<V>(local);
      continue;
    }
    if (!decodeBlock<V>({block, V::load(local.source + 1), V::load(local.source + 2)}, any, carry,
                        local.target))
      break;
    local.source += V::kSize;
  }
  if (carry.trails != 0) dropLast(local);
  cursor = local;
}

VEL_VECTOR void decodeUtf8(Cursor& cursor) noexcept {
  decodeBlocks<Widest>(cursor);
  if constexpr (kHasVector32) decodeBlocks<Vector16>(cursor);
  constexpr std::size_t kMaxTail = Vector16::kSize + 4;
  convertTail<kMaxTail>(cursor, {&decodeBlocks<Vector16>, Vector16::kSize + 1, 1, kUnitSize});
}

}  // namespace

}  // namespace vel::codepage
