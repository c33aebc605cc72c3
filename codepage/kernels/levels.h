// The sets of kernels that processors of x86-64 may support.
#pragma once

#include "codepage/kernels/kernels.h"

namespace vel::codepage {

extern const Kernels kSse4Kernels, kAvx2Kernels;

}  // namespace vel::codepage
