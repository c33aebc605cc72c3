// Platform IDs, import thunks and message boxes.
#include <algorithm>
#include <cstdint>
#include <cstring>

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include "platform/system.h"
#include "platform/windows/native_text.h"

namespace vel::platform {

int windowsPlatformId() noexcept {
  OSVERSIONINFOW version{};
  // GetVersionEx recognises the structure by its size.
  static_assert(sizeof version == 276);
  version.dwOSVersionInfoSize = sizeof version;
  return GetVersionExW(&version) != FALSE ? static_cast<int>(version.dwPlatformId) : -1;
}

// The address that a program has of another library's function may be that of a thunk, a jump through the
// program's import table: FF 25, then the distance from the next instruction to the table's entry. Follow
// such jumps, so that both addresses compare equal:
//
//   FF 25 d0 d1 d2 d3      jmp [next instruction + d]
const void* resolveImportThunk(const void* function) noexcept {
  // Bounds a chain of thunks that leads back to itself.
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

namespace {

/// A text that is not in the process's encoding is shown as well as it can be.
void showBox(const char* text, const char* title) noexcept {
  const WideText wideText(text, textCodePage()), wideTitle(title, textCodePage());
  if (wideText.isValid() && wideTitle.isValid())
    MessageBoxW(nullptr, wideText.get(), wideTitle.get(), MB_ICONSTOP);
  else
    MessageBoxA(nullptr, text, title, MB_ICONSTOP);
}

}  // namespace

void showStopMessage(const char* title, const char* const* pieces, std::size_t count) noexcept {
  std::size_t length = 0;
  for (std::size_t i = 0; i < count; ++i) length += std::strlen(pieces[i]);
  // The process's heap is not used, because it may be what failed. If the system has no memory either, the
  // text is truncated to this buffer.
  char cut[4096];
  auto* text =
      static_cast<char*>(VirtualAlloc(nullptr, length + 1, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE));
  if (text == nullptr) {
    text = cut;
    length = std::min(length, sizeof cut - 1);
  }
  char* out = text;
  for (std::size_t i = 0; i < count; ++i) {
    const std::size_t size = std::min(std::strlen(pieces[i]), static_cast<std::size_t>(text + length - out));
    std::memcpy(out, pieces[i], size);
    out += size;
  }
  *out = '\0';
  showBox(text, title);
  if (text != cut) VirtualFree(text, 0, MEM_RELEASE);
}

}  // namespace vel::platform
