// Shared by the AVX-512 kernels: helpers around AVX-512 on blocks of 64 bytes. Empty for processors other
// than x86-64.
//
// Every function with vectors carries VEL_VECTOR, which compiles it for AVX-512 whatever the rest of the
// library is compiled for; the check of the level keeps processors without it from getting there. Vocabulary:
// a vector has lanes, of one, two or four bytes; a mask has a bit for each lane; "compress" moves the lanes
// of a mask together at the start.
#pragma once

#if defined(__x86_64__)

#include <immintrin.h>

#include <bit>

#include "codepage/conversion.h"
#include "codepage/kernels/kernels.h"

#define VEL_VECTOR_CLMUL
#define VEL_VECTOR __attribute__((target("avx512f,avx512bw,avx512vl,avx512vbmi,avx512vbmi2,bmi2,pclmul")))

namespace vel::codepage::vectors {

// The members of Kernels, in avx512_moves.cpp, avx512_single_bytes.cpp, avx512_utf8_decoder.cpp,
// avx512_utf8_encoder.cpp and avx512_mixed_bytes.cpp.
void widen(char* target, const char* source, std::size_t count) noexcept;
void narrow(char* target, const char* source, std::size_t count) noexcept;
void swap(char* target, const char* source, std::size_t count) noexcept;
void lookUpBytes(char* target, const char* source, std::size_t size, const std::uint16_t* table) noexcept;
void decodeUtf8(Cursor& cursor) noexcept;
void encodeUtf8(Cursor& cursor) noexcept;
void decodeMixed(Cursor& cursor, const VelStDoubleByteTable& table) noexcept;
void decodeShifted(Cursor& cursor, const VelStDoubleByteTable& table, bool& isDouble) noexcept;
void mapUnits(char* target, const char* source, std::size_t count, const unsigned char* table) noexcept;

inline constexpr std::size_t kBlock = 64;

VEL_VECTOR inline __m512i load(const void* from) {
  return _mm512_loadu_si512(from);
}
VEL_VECTOR inline void store(void* to, __m512i value) {
  _mm512_storeu_si512(to, value);
}
/// Stores to an aligned address, bypassing the caches.
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

/// Looks up each byte in a table of 256 bytes that lies in four vectors. One permutation covers two of them,
/// 128 entries, and uses the lower seven bits of an index; the top bit chooses between the two results.
VEL_VECTOR inline __m512i lookUp(const __m512i (&plane)[4], __m512i index) {
  const __m512i lower = _mm512_permutex2var_epi8(plane[0], index, plane[1]);
  const __m512i upper = _mm512_permutex2var_epi8(plane[2], index, plane[3]);
  return _mm512_mask_mov_epi8(lower, _mm512_movepi8_mask(index), upper);
}

/// A table of 256 bytes.
struct ByteTable {
  __m512i part[4];
};

VEL_VECTOR inline ByteTable loadBytes(const std::uint8_t* values) {
  return {{load(values), load(values + 64), load(values + 128), load(values + 192)}};
}

/// Stores 64 units, whose low and high bytes are in two vectors. Unpacking interleaves them within 16-byte
/// lanes only, so a permutation puts these into order.
VEL_VECTOR inline void storeUnits(char* target, __m512i low, __m512i high, StoreVector put = store) {
  const __m512i even = _mm512_unpacklo_epi8(low, high);
  const __m512i odd = _mm512_unpackhi_epi8(low, high);
  put(target, _mm512_permutex2var_epi64(even, _mm512_setr_epi64(0, 1, 8, 9, 2, 3, 10, 11), odd));
  put(target + kBlock, _mm512_permutex2var_epi64(even, _mm512_setr_epi64(4, 5, 12, 13, 6, 7, 14, 15), odd));
}

}  // namespace vel::codepage::vectors

#endif
