// Widening, narrowing and swapping: loops that the compiler vectorises with the instructions of the level
// that VEL_VECTOR stands for. AVX-512 has its own in avx512_moves.cpp.
#pragma once

#include "codepage/conversion.h"
#include "codepage/kernels/kernels.h"

namespace vel::codepage {

namespace {

VEL_VECTOR void widen(char* __restrict target, const char* __restrict source, std::size_t count) noexcept {
  for (std::size_t i = 0; i < count; ++i)
    writeUnit(target + i * kUnitSize, static_cast<unsigned char>(source[i]));
}

VEL_VECTOR void narrow(char* __restrict target, const char* __restrict source, std::size_t count) noexcept {
  for (std::size_t i = 0; i < count; ++i) target[i] = static_cast<char>(readUnit(source + i * kUnitSize));
}

VEL_VECTOR void swap(char* __restrict target, const char* __restrict source, std::size_t count) noexcept {
  for (std::size_t i = 0; i < count; ++i) {
    const std::uint16_t unit = readUnit(source + i * kUnitSize);
    writeUnit(target + i * kUnitSize, static_cast<std::uint16_t>(unit << 8 | unit >> 8));
  }
}

}  // namespace

}  // namespace vel::codepage
