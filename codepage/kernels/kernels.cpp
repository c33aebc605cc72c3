// The choice of a level of kernels, made once in a process.
#include "codepage/kernels/kernels.h"

#include <cstring>

#include "platform/environment.h"

namespace vel::codepage {

namespace {

constexpr KernelLevel kPortableLevel{"portable", &kPortableKernels, []() noexcept { return true; }};

/// Returns the supported level of this name, or the best one if `name` is null; null if there is none.
const KernelLevel* find(const char* name) {
  const auto matches = [name](const KernelLevel& level) {
    return (name == nullptr || std::strcmp(name, level.name) == 0) && level.isSupported();
  };
  for (const KernelLevel& level : vectorLevels())
    if (matches(level)) return &level;
  return matches(kPortableLevel) ? &kPortableLevel : nullptr;
}

const KernelLevel& choose() {
  const KernelLevel* const wanted = find(platform::settingValue("VEL_KERNELS"));
  return wanted != nullptr ? *wanted : *find(nullptr);
}

}  // namespace

const KernelLevel& kernelLevel() noexcept {
  // Chosen once: all conversions of a process use the same kernels.
  static const KernelLevel& best = choose();
  return best;
}

const Kernels& kernels() noexcept {
  static const Kernels& best = *kernelLevel().kernels;
  return best;
}

}  // namespace vel::codepage

const char* velGetKernelLevel() {
  return vel::codepage::kernelLevel().name;
}
