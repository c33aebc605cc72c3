// The table of vector kernels, and the check that the processor and the operating system support all
// instructions that they use.
#include "codepage/kernels/vectors.h"

namespace vel::codepage {

#if defined(__x86_64__)

namespace {

constexpr Kernels kVectorKernels{&vectors::widen,       &vectors::narrow,       &vectors::swap,
                                 &vectors::lookUpBytes, &vectors::decodeUtf8,   &vectors::encodeUtf8,
                                 &vectors::decodeMixed, &vectors::decodeShifted};

}  // namespace

const Kernels* vectorKernels() noexcept {
  __builtin_cpu_init();
  const bool isSupported = __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") &&
                           __builtin_cpu_supports("avx512vl") && __builtin_cpu_supports("avx512vbmi") &&
                           __builtin_cpu_supports("avx512vbmi2") && __builtin_cpu_supports("bmi2") &&
                           __builtin_cpu_supports("pclmul");
  return isSupported ? &kVectorKernels : nullptr;
}

#else

const Kernels* vectorKernels() noexcept {
  return nullptr;
}

#endif

}  // namespace vel::codepage
