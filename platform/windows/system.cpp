// Platform identifiers, import thunks and message boxes.
#include <cstring>

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include "platform/platform.h"

namespace vel::platform {

int windowsPlatformId() noexcept {
  OSVERSIONINFOA version{};
  static_assert(sizeof version == 148);
  version.dwOSVersionInfoSize = sizeof version;
  return GetVersionExA(&version) != FALSE ? static_cast<int>(version.dwPlatformId) : -1;
}

// A program's address of a function of another library may be that of a jump through the program's
// import table: FF 25 and the distance of the table's entry from the next instruction.
const void* resolveImportThunk(const void* function) noexcept {
  constexpr int kMaxJumps = 4;
  constexpr std::uint8_t kJump[] = {0xFF, 0x25};
  constexpr std::size_t kJumpSize = 6;
  for (int jump = 0; jump < kMaxJumps; ++jump) {
    if (function == nullptr || std::memcmp(function, kJump, sizeof kJump) != 0) break;
    const auto* const code = static_cast<const std::uint8_t*>(function);
    std::int32_t distance = 0;
    std::memcpy(&distance, code + sizeof kJump, sizeof distance);
    std::memcpy(&function, code + kJumpSize + distance, sizeof function);
  }
  return function;
}

void showStopMessage(const char* title, const char* text) noexcept {
  MessageBoxA(nullptr, text, title, MB_ICONSTOP);
}

}  // namespace vel::platform
