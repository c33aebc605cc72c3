// The vectors of the kernels for SSE4.1 and AVX2. A source that includes this has defined VEL_VECTOR, the
// attribute that compiles a function for its level whatever the rest of the library is compiled for; all that
// carries it is in an unnamed namespace, so that each level has functions of its own.
//
// Arithmetic is that of the compiler's vector types. The classes below have what these cannot express. The
// lanes of 32 bytes are two halves of 16 that most instructions treat separately.
#pragma once

#include <immintrin.h>

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "codepage/kernels/shuffle_tables.h"

namespace vel::codepage {

namespace {

template <typename Vector>
VEL_VECTOR inline Vector loadAs(const void* from) {
  Vector vector;
  std::memcpy(&vector, from, sizeof vector);
  return vector;
}
template <typename Vector>
VEL_VECTOR inline void store(char* to, Vector vector) {
  std::memcpy(to, &vector, sizeof vector);
}

inline std::size_t countBits(std::uint32_t mask) {
  return static_cast<std::size_t>(std::popcount(mask));
}

/// Shuffles a vector of 16 bytes by a row of a table.
VEL_VECTOR inline __m128i shuffle(__m128i vector, const Shuffle& row) {
  return _mm_shuffle_epi8(vector, _mm_load_si128(reinterpret_cast<const __m128i*>(row.data())));
}

/// Writes 16 bytes and advances by `used` of them.
VEL_VECTOR inline void append(char*& target, __m128i vector, std::size_t used) {
  _mm_storeu_si128(reinterpret_cast<__m128i*>(target), vector);
  target += used;
}

/// Writes those of eight units whose bits are set in the low byte of `lanes`.
VEL_VECTOR inline void appendUnits(char*& target, __m128i units, std::uint32_t lanes) {
  const std::uint32_t mask = lanes & 0xFF;
  append(target, shuffle(units, kCompressUnits[mask]), 2 * countBits(mask));
}
/// Writes eight encoded characters, of one byte where a bit is set in the low byte of `one`, else of two.
VEL_VECTOR inline void appendTwoBytes(char*& target, __m128i words, std::uint32_t one) {
  const std::uint32_t mask = one & 0xFF;
  append(target, shuffle(words, kCompressTwoBytes[mask]), 16 - countBits(mask));
}
/// Writes four encoded characters; the low byte of `lengths` is a mask of kCompressThreeBytes.
VEL_VECTOR inline void appendThreeBytes(char*& target, __m128i lanes, std::uint32_t lengths) {
  const std::uint32_t mask = lengths & 0xFF;
  append(target, shuffle(lanes, kCompressThreeBytes[mask]), 12 - countBits(mask));
}

struct Vector16 {
  static constexpr std::size_t kSize = 16;
  static constexpr std::size_t kUnits = 8;
  using Bytes = unsigned char __attribute__((vector_size(16)));
  using SignedBytes = signed char __attribute__((vector_size(16)));
  using Words = std::uint16_t __attribute__((vector_size(16)));
  using Choice = std::int16_t __attribute__((vector_size(16)));  ///< of units, by a comparison

  static VEL_VECTOR Bytes load(const void* from) { return loadAs<Bytes>(from); }
  static VEL_VECTOR Words loadWords(const void* from) { return loadAs<Words>(from); }
  /// Returns a mask of the bytes' top bits.
  static VEL_VECTOR std::uint32_t signs(Bytes bytes) {
    return static_cast<std::uint32_t>(_mm_movemask_epi8(reinterpret_cast<__m128i>(bytes)));
  }
  /// Returns a mask of the comparison of units: two bits for each.
  static VEL_VECTOR std::uint32_t signs(Choice units) { return signs(reinterpret_cast<Bytes>(units)); }
  /// Returns the units one place further on, with 0 in place of the first one.
  static VEL_VECTOR Words shiftIn(Words units) {
    return reinterpret_cast<Words>(_mm_slli_si128(reinterpret_cast<__m128i>(units), 2));
  }
  /// Returns the same row of a table in each half.
  static VEL_VECTOR Bytes repeat(const std::uint8_t* row) { return load(row); }
  /// Shuffles each half: bytes with the top bit select 0, others the byte of their lowest four bits.
  static VEL_VECTOR Bytes shuffleHalves(Bytes row, Bytes index) {
    return reinterpret_cast<Bytes>(
        _mm_shuffle_epi8(reinterpret_cast<__m128i>(row), reinterpret_cast<__m128i>(index)));
  }
  static VEL_VECTOR Bytes subtractSaturated(Bytes a, Bytes b) {
    return reinterpret_cast<Bytes>(_mm_subs_epi8(reinterpret_cast<__m128i>(a), reinterpret_cast<__m128i>(b)));
  }
  /// Returns the low bytes of two vectors of units, in order; FF for units above FF.
  static VEL_VECTOR Bytes pack(Words first, Words second) {
    return reinterpret_cast<Bytes>(
        _mm_packus_epi16(reinterpret_cast<__m128i>(first), reinterpret_cast<__m128i>(second)));
  }
  /// Writes the units of low and high bytes.
  static VEL_VECTOR void interleave(char* target, Bytes low, Bytes high) {
    const __m128i a = reinterpret_cast<__m128i>(low), b = reinterpret_cast<__m128i>(high);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(target), _mm_unpacklo_epi8(a, b));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(target + kSize), _mm_unpackhi_epi8(a, b));
  }
  /// Returns all ones in the bytes whose bits are set in `mask`, of which the lowest ones count.
  static VEL_VECTOR Bytes expand(std::uint64_t mask) {
    const __m128i bits = _mm_set1_epi64x(static_cast<long long>(0x8040201008040201));
    const __m128i spread =
        _mm_shuffle_epi8(_mm_cvtsi32_si128(static_cast<int>(mask)), _mm_set_epi64x(0x0101010101010101, 0));
    return reinterpret_cast<Bytes>(_mm_cmpeq_epi8(_mm_and_si128(spread, bits), bits));
  }
  static VEL_VECTOR void widen(char* target, Bytes bytes) {
    const __m128i vector = reinterpret_cast<__m128i>(bytes), zero = _mm_setzero_si128();
    _mm_storeu_si128(reinterpret_cast<__m128i*>(target), _mm_unpacklo_epi8(vector, zero));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(target + kSize), _mm_unpackhi_epi8(vector, zero));
  }
  /// Writes the low bytes of two vectors of units below 0x100.
  static VEL_VECTOR void narrow(char* target, Words first, Words second) {
    const __m128i bytes =
        _mm_packus_epi16(reinterpret_cast<__m128i>(first), reinterpret_cast<__m128i>(second));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(target), bytes);
  }
  /// Writes those units, of low and high bytes, whose bits are set.
  static VEL_VECTOR void appendLanes(char*& target, Bytes low, Bytes high, std::uint32_t lanes) {
    const __m128i a = reinterpret_cast<__m128i>(low), b = reinterpret_cast<__m128i>(high);
    appendUnits(target, _mm_unpacklo_epi8(a, b), lanes);
    appendUnits(target, _mm_unpackhi_epi8(a, b), lanes >> 8);
  }
  /// Whether all units are below 0x80.
  static VEL_VECTOR bool areAscii(Words units) {
    const Words other = units & loadWords(Lanes<std::uint16_t{0xFF80}>::vector.data());
    return _mm_testz_si128(reinterpret_cast<__m128i>(other), reinterpret_cast<__m128i>(other)) != 0;
  }
  /// Returns the masks of kCompressThreeBytes for all units.
  static VEL_VECTOR std::uint32_t lengthsOf(Choice one, Choice upToTwo) {
    const __m128i lengths =
        _mm_packs_epi16(reinterpret_cast<__m128i>(one), reinterpret_cast<__m128i>(upToTwo));
    return static_cast<std::uint32_t>(_mm_movemask_epi8(_mm_shuffle_epi32(lengths, 0xD8)));
  }
  static VEL_VECTOR void appendUpToTwo(char*& target, Words words, Choice one) {
    const __m128i mask = reinterpret_cast<__m128i>(one);
    appendTwoBytes(target, reinterpret_cast<__m128i>(words),
                   static_cast<std::uint32_t>(_mm_movemask_epi8(_mm_packs_epi16(mask, mask))));
  }
  static VEL_VECTOR void appendUpToThree(char*& target, Words last, Words first, std::uint32_t lengths) {
    const __m128i a = reinterpret_cast<__m128i>(last), b = reinterpret_cast<__m128i>(first);
    appendThreeBytes(target, _mm_unpacklo_epi16(a, b), lengths);
    appendThreeBytes(target, _mm_unpackhi_epi16(a, b), lengths >> 8);
  }
};

#if defined(VEL_VECTOR_32)

struct Vector32 {
  static constexpr std::size_t kSize = 32;
  static constexpr std::size_t kUnits = 16;
  using Bytes = unsigned char __attribute__((vector_size(32)));
  using SignedBytes = signed char __attribute__((vector_size(32)));
  using Words = std::uint16_t __attribute__((vector_size(32)));
  using Choice = std::int16_t __attribute__((vector_size(32)));  ///< of units, by a comparison

  static VEL_VECTOR Bytes load(const void* from) { return loadAs<Bytes>(from); }
  static VEL_VECTOR Words loadWords(const void* from) { return loadAs<Words>(from); }
  static VEL_VECTOR std::uint32_t signs(Bytes bytes) {
    return static_cast<std::uint32_t>(_mm256_movemask_epi8(reinterpret_cast<__m256i>(bytes)));
  }
  static VEL_VECTOR std::uint32_t signs(Choice units) { return signs(reinterpret_cast<Bytes>(units)); }
  static VEL_VECTOR Words shiftIn(Words units) {
    const __m256i vector = reinterpret_cast<__m256i>(units);
    const __m256i before = _mm256_permute2x128_si256(vector, vector, 0x08);
    return reinterpret_cast<Words>(_mm256_alignr_epi8(vector, before, 14));
  }
  static VEL_VECTOR Bytes repeat(const std::uint8_t* row) {
    const __m128i half = _mm_loadu_si128(reinterpret_cast<const __m128i*>(row));
    return reinterpret_cast<Bytes>(_mm256_broadcastsi128_si256(half));
  }
  static VEL_VECTOR Bytes shuffleHalves(Bytes row, Bytes index) {
    return reinterpret_cast<Bytes>(
        _mm256_shuffle_epi8(reinterpret_cast<__m256i>(row), reinterpret_cast<__m256i>(index)));
  }
  static VEL_VECTOR Bytes subtractSaturated(Bytes a, Bytes b) {
    return reinterpret_cast<Bytes>(
        _mm256_subs_epi8(reinterpret_cast<__m256i>(a), reinterpret_cast<__m256i>(b)));
  }
  static VEL_VECTOR Bytes pack(Words first, Words second) {
    const __m256i halves =
        _mm256_packus_epi16(reinterpret_cast<__m256i>(first), reinterpret_cast<__m256i>(second));
    return reinterpret_cast<Bytes>(_mm256_permute4x64_epi64(halves, 0xD8));
  }
  static VEL_VECTOR void interleave(char* target, Bytes low, Bytes high) {
    const __m256i a = reinterpret_cast<__m256i>(low), b = reinterpret_cast<__m256i>(high);
    const __m256i even = _mm256_unpacklo_epi8(a, b), odd = _mm256_unpackhi_epi8(a, b);
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(target), _mm256_permute2x128_si256(even, odd, 0x20));
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(target + kSize),
                        _mm256_permute2x128_si256(even, odd, 0x31));
  }
  static VEL_VECTOR Bytes expand(std::uint64_t mask) {
    const __m256i bits = _mm256_set1_epi64x(static_cast<long long>(0x8040201008040201));
    const __m256i spread =
        _mm256_shuffle_epi8(_mm256_set1_epi32(static_cast<int>(mask)),
                            _mm256_set_epi64x(0x0303030303030303, 0x0202020202020202, 0x0101010101010101, 0));
    return reinterpret_cast<Bytes>(_mm256_cmpeq_epi8(_mm256_and_si256(spread, bits), bits));
  }
  static VEL_VECTOR void widen(char* target, Bytes bytes) {
    const __m256i vector = reinterpret_cast<__m256i>(bytes);
    const __m256i first = _mm256_cvtepu8_epi16(_mm256_castsi256_si128(vector));
    const __m256i second = _mm256_cvtepu8_epi16(_mm256_extracti128_si256(vector, 1));
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(target), first);
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(target + kSize), second);
  }
  static VEL_VECTOR void narrow(char* target, Words first, Words second) {
    const __m256i halves =
        _mm256_packus_epi16(reinterpret_cast<__m256i>(first), reinterpret_cast<__m256i>(second));
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(target), _mm256_permute4x64_epi64(halves, 0xD8));
  }
  static VEL_VECTOR void appendLanes(char*& target, Bytes low, Bytes high, std::uint32_t lanes) {
    const __m256i a = reinterpret_cast<__m256i>(low), b = reinterpret_cast<__m256i>(high);
    const __m256i even = _mm256_unpacklo_epi8(a, b), odd = _mm256_unpackhi_epi8(a, b);
    appendUnits(target, _mm256_castsi256_si128(even), lanes);
    appendUnits(target, _mm256_castsi256_si128(odd), lanes >> 8);
    appendUnits(target, _mm256_extracti128_si256(even, 1), lanes >> 16);
    appendUnits(target, _mm256_extracti128_si256(odd, 1), lanes >> 24);
  }
  static VEL_VECTOR bool areAscii(Words units) {
    const Words other = units & loadWords(Lanes<std::uint16_t{0xFF80}>::vector.data());
    return _mm256_testz_si256(reinterpret_cast<__m256i>(other), reinterpret_cast<__m256i>(other)) != 0;
  }
  static VEL_VECTOR std::uint32_t lengthsOf(Choice one, Choice upToTwo) {
    const __m256i lengths =
        _mm256_packs_epi16(reinterpret_cast<__m256i>(one), reinterpret_cast<__m256i>(upToTwo));
    return static_cast<std::uint32_t>(_mm256_movemask_epi8(_mm256_shuffle_epi32(lengths, 0xD8)));
  }
  static VEL_VECTOR void appendUpToTwo(char*& target, Words words, Choice one) {
    const __m256i mask = reinterpret_cast<__m256i>(one), all = reinterpret_cast<__m256i>(words);
    const auto masks = static_cast<std::uint32_t>(_mm256_movemask_epi8(_mm256_packs_epi16(mask, mask)));
    appendTwoBytes(target, _mm256_castsi256_si128(all), masks);
    appendTwoBytes(target, _mm256_extracti128_si256(all, 1), masks >> 16);
  }
  static VEL_VECTOR void appendUpToThree(char*& target, Words last, Words first, std::uint32_t lengths) {
    const __m256i a = reinterpret_cast<__m256i>(last), b = reinterpret_cast<__m256i>(first);
    const __m256i even = _mm256_unpacklo_epi16(a, b), odd = _mm256_unpackhi_epi16(a, b);
    appendThreeBytes(target, _mm256_castsi256_si128(even), lengths);
    appendThreeBytes(target, _mm256_castsi256_si128(odd), lengths >> 8);
    appendThreeBytes(target, _mm256_extracti128_si256(even, 1), lengths >> 16);
    appendThreeBytes(target, _mm256_extracti128_si256(odd, 1), lengths >> 24);
  }
};

constexpr bool kHasVector32 = true;
using Widest = Vector32;
#else
constexpr bool kHasVector32 = false;
using Widest = Vector16;
#endif

/// A vector with the same value in all bytes, or in all words.
template <typename V, std::uint8_t value>
VEL_VECTOR inline typename V::Bytes bytes() {
  return V::load(Lanes<value>::vector.data());
}
template <typename V, std::uint16_t value>
VEL_VECTOR inline typename V::Words words() {
  return V::loadWords(Lanes<value>::vector.data());
}

}  // namespace

}  // namespace vel::codepage
