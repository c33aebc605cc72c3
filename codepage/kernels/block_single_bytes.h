// Single bytes to UCS-2 for SSE4.1 and AVX2.
#pragma once

#include "codepage/kernels/kernels.h"

namespace vel::codepage {

namespace {

void lookUpBytes(char* target, const char* source, std::size_t size, const std::uint16_t* table) noexcept {
  kPortableKernels.lookUpBytes(target, source, size, table);
}

}  // namespace

}  // namespace vel::codepage
