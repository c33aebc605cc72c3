// The choice between the portable and the vector kernels, made once in a process.
#include "codepage/kernels/kernels.h"

#include <cstring>

#include "platform/environment.h"

namespace vel::codepage {

namespace {

/// Tests and benchmarks compare the two sets on one processor by this variable.
bool isPortableForced() {
  const char* const wanted = platform::settingValue("VEL_KERNELS");
  return wanted != nullptr && std::strcmp(wanted, "portable") == 0;
}

const Kernels& choose() {
  const Kernels* const vector = vectorKernels();
  return vector != nullptr && !isPortableForced() ? *vector : kPortableKernels;
}

}  // namespace

const Kernels& kernels() noexcept {
  // Chosen once: all conversions of a process use the same kernels.
  static const Kernels& best = choose();
  return best;
}

}  // namespace vel::codepage
