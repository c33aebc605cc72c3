// Answers for queries about features that only Windows has: platform IDs, import thunks and message boxes.
#include "platform/system.h"

namespace vel::platform {

int windowsPlatformId() noexcept {
  return -1;
}

const void* resolveImportThunk(const void* function) noexcept {
  return function;
}

void showStopMessage(const char*, const char* const*, std::size_t) noexcept {}

}  // namespace vel::platform
