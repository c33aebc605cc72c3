// The kernels for AVX2.
#if defined(__x86_64__)

#define VEL_VECTOR __attribute__((target("avx2,bmi,bmi2,pclmul,popcnt")))
#define VEL_VECTOR_32
#define VEL_VECTOR_CLMUL

#include "codepage/kernels/block_mixed_bytes.h"
#include "codepage/kernels/block_moves.h"
#include "codepage/kernels/block_single_bytes.h"
#include "codepage/kernels/block_utf8_decoder.h"
#include "codepage/kernels/block_utf8_encoder.h"
#include "codepage/kernels/levels.h"

namespace vel::codepage {

constinit const Kernels kAvx2Kernels{&widen,      &narrow,      &swap,          &lookUpBytes, &decodeUtf8,
                                     &encodeUtf8, &decodeMixed, &decodeShifted, &mapUnits};

}  // namespace vel::codepage

#endif
