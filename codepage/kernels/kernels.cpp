#include "codepage/kernels/kernels.h"

#include <cstring>

#include "platform/platform.h"

namespace vel::codepage {

namespace {

/// "portable" in this environment variable does without the others, so that they can be compared.
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
  static const Kernels& best = choose();
  return best;
}

}  // namespace vel::codepage
