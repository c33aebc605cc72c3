// The kernels for SSE4.1.
#if defined(__x86_64__)

#define VEL_VECTOR __attribute__((target("ssse3,sse4.1,popcnt")))

#include "codepage/kernels/block_mixed_bytes.h"
#include "codepage/kernels/block_moves.h"
#include "codepage/kernels/block_single_bytes.h"
#include "codepage/kernels/block_utf8_decoder.h"
#include "codepage/kernels/block_utf8_encoder.h"
#include "codepage/kernels/levels.h"

namespace vel::codepage {

constinit const Kernels kSse4Kernels{&widen,      &narrow,      &swap,          &lookUpBytes, &decodeUtf8,
                                     &encodeUtf8, &decodeMixed, &decodeShifted, &mapUnits};

}  // namespace vel::codepage

#endif
