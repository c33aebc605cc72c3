#include "codepage/kernels.h"

namespace vel::codepage {

const Kernels& kernels() noexcept {
  static const Kernels& best = vectorKernels() != nullptr ? *vectorKernels() : kPortableKernels;
  return best;
}

}  // namespace vel::codepage
