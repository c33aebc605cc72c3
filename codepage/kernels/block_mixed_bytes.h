// Mixed single and double bytes to UCS-2 for SSE4.1 and AVX2.
#pragma once

#include "codepage/kernels/kernels.h"

namespace vel::codepage {

namespace {

void decodeMixed(Cursor&, const VelStDoubleByteTable&) noexcept {}
void decodeShifted(Cursor&, const VelStDoubleByteTable&, bool&) noexcept {}

}  // namespace

}  // namespace vel::codepage
