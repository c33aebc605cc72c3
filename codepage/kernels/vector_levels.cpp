// The levels of vector kernels for x86-64, and the checks that the processor and the operating system support
// all instructions that they use. __builtin_cpu_supports asks the operating system as well (XGETBV): without
// its support for the wide registers, the instructions are not usable.
#include "codepage/kernels/avx512_vectors.h"
#include "codepage/kernels/levels.h"

namespace vel::codepage {

#if defined(__x86_64__)

namespace {

constexpr Kernels kAvx512Kernels{&vectors::widen,       &vectors::narrow,        &vectors::swap,
                                 &vectors::lookUpBytes, &vectors::decodeUtf8,    &vectors::encodeUtf8,
                                 &vectors::decodeMixed, &vectors::decodeShifted, &vectors::mapUnits};

bool supportsAvx512() noexcept {
  __builtin_cpu_init();
  return __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") &&
         __builtin_cpu_supports("avx512vl") && __builtin_cpu_supports("avx512vbmi") &&
         __builtin_cpu_supports("avx512vbmi2") && __builtin_cpu_supports("bmi2") &&
         __builtin_cpu_supports("pclmul");
}

bool supportsAvx2() noexcept {
  __builtin_cpu_init();
  return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("bmi") && __builtin_cpu_supports("bmi2") &&
         __builtin_cpu_supports("pclmul") && __builtin_cpu_supports("popcnt");
}

bool supportsSse4() noexcept {
  __builtin_cpu_init();
  return __builtin_cpu_supports("sse4.1") && __builtin_cpu_supports("ssse3") &&
         __builtin_cpu_supports("popcnt");
}

constexpr KernelLevel kLevels[] = {{"avx512", &kAvx512Kernels, &supportsAvx512},
                                   {"avx2", &kAvx2Kernels, &supportsAvx2},
                                   {"sse4", &kSse4Kernels, &supportsSse4}};

}  // namespace

std::span<const KernelLevel> vectorLevels() noexcept {
  return kLevels;
}

#else

std::span<const KernelLevel> vectorLevels() noexcept {
  return {};
}

#endif

}  // namespace vel::codepage
