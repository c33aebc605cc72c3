// What the vector loops share: AVX-512 on 64 bytes at a time. Empty on other processors.
#pragma once

#if defined(__x86_64__)

#include <immintrin.h>

#include <bit>

#include "codepage/conversion.h"
#include "codepage/kernels/kernels.h"

#define VEL_VECTOR __attribute__((target("avx512f,avx512bw,avx512vl,avx512vbmi,avx512vbmi2,bmi2,pclmul")))

namespace vel::codepage::vectors {

// Kernels tells what these do.
void widen(char* target, const char* source, std::size_t count) noexcept;
void narrow(char* target, const char* source, std::size_t count) noexcept;
void swap(char* target, const char* source, std::size_t count) noexcept;
void lookUpBytes(char* target, const char* source, std::size_t size, const std::uint16_t* table) noexcept;
void decodeUtf8(Cursor& cursor) noexcept;
void encodeUtf8(Cursor& cursor) noexcept;
void decodeMixed(Cursor& cursor, const VelStDoubleByteTable& table) noexcept;
void decodeShifted(Cursor& cursor, const VelStDoubleByteTable& table, bool& isDouble) noexcept;

inline constexpr std::size_t kBlock = 64;

VEL_VECTOR inline __m512i load(const void* from) {
  return _mm512_loadu_si512(from);
}
VEL_VECTOR inline void store(void* to, __m512i value) {
  _mm512_storeu_si512(to, value);
}
/// Past the caches, to an aligned place.
VEL_VECTOR inline void stream(void* to, __m512i value) {
  _mm512_stream_si512(static_cast<__m512i*>(to), value);
}
using StoreVector = void (*)(void* to, __m512i value);

VEL_VECTOR inline __m512i bytes(int value) {
  return _mm512_set1_epi8(static_cast<char>(value));
}
VEL_VECTOR inline __m512i words(int value) {
  return _mm512_set1_epi16(static_cast<short>(value));
}
VEL_VECTOR inline __m512i dwords(std::uint32_t value) {
  return _mm512_set1_epi32(static_cast<int>(value));
}

/// Each byte as an index into 256 bytes.
VEL_VECTOR inline __m512i lookUp(const __m512i (&plane)[4], __m512i index) {
  const __m512i lower = _mm512_permutex2var_epi8(plane[0], index, plane[1]);
  const __m512i upper = _mm512_permutex2var_epi8(plane[2], index, plane[3]);
  return _mm512_mask_mov_epi8(lower, _mm512_movepi8_mask(index), upper);
}

/// 64 units, of which two vectors have the halves.
VEL_VECTOR inline void storeUnits(char* target, __m512i low, __m512i high, StoreVector put = store) {
  const __m512i even = _mm512_unpacklo_epi8(low, high);
  const __m512i odd = _mm512_unpackhi_epi8(low, high);
  put(target, _mm512_permutex2var_epi64(even, _mm512_setr_epi64(0, 1, 8, 9, 2, 3, 10, 11), odd));
  put(target + kBlock, _mm512_permutex2var_epi64(even, _mm512_setr_epi64(4, 5, 12, 13, 6, 7, 14, 15), odd));
}

/// A loop, what it leaves at the end of a text at most, and what zeros are on both sides.
struct BlockKernel {
  void (*convert)(Cursor& cursor) noexcept;
  std::size_t maxTail;
  std::size_t sourceNulSize;
  std::size_t targetNulSize;
};

/// The end of a text, which is too short for a loop: it gets the end with zeros behind.
inline void convertTail(Cursor& cursor, const BlockKernel& kernel) {
  constexpr std::size_t kMaxSize = kBlock + 3;
  char source[kMaxSize * 2] = {};
  char target[sizeof source * 3];
  const std::size_t size = cursor.sourceSize();
  if (size == 0 || size > kMaxSize) return;
  std::memcpy(source, cursor.source, size);
  Cursor end{source, source + size + kernel.maxTail, target, target + sizeof target};
  kernel.convert(end);
  auto consumed = static_cast<std::size_t>(end.source - source);
  auto written = static_cast<std::size_t>(end.target - target);
  if (consumed > size) {
    written -= (consumed - size) / kernel.sourceNulSize * kernel.targetNulSize;
    consumed = size;
  }
  if (written > cursor.targetSize()) return;
  std::memcpy(cursor.target, target, written);
  cursor.source += consumed;
  cursor.target += written;
}

}  // namespace vel::codepage::vectors

#endif
