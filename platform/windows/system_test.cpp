// Import thunks, platform identifiers, terminals and code pages; and the public
// headers beside windows.h, which defines some of their names as macros.
#include <windows.h>

// windows.h comes first.
#include "vel_include/vel.h"
#include "vel_include/vel_c.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <io.h>

#include <array>
#include <cstring>

#include "platform/platform.h"

// Both macros are as they were.
static_assert(static_cast<int>(VelEnErrorAction::NO_ACTION) == IGNORE && VEL_NO_ERROR == NO_ERROR);

namespace vel::platform {

namespace {

/// A jump through a table entry, in front of or behind it.
struct Thunk {
  std::array<std::uint8_t, 8> code;
  const void* entry;

  void jumpTo(const void* target) {
    const std::int32_t distance = offsetof(Thunk, entry) - 6;
    code = {0xFF, 0x25};
    std::memcpy(code.data() + 2, &distance, sizeof distance);
    entry = target;
  }
};

TEST(WindowsSystem, ThunksLeadToTheFunctionOfAnNtSystem) {
  const std::uint8_t function[] = {0xFF, 0x24, 0, 0, 0, 0};
  Thunk inner{}, outer{}, endless{};
  inner.jumpTo(function);
  outer.jumpTo(&inner);
  endless.jumpTo(&endless);
  for (const void* start : {static_cast<const void*>(function), static_cast<const void*>(&outer)})
    EXPECT_EQ(resolveImportThunk(start), function);
  EXPECT_EQ(resolveImportThunk(nullptr), nullptr);
  EXPECT_EQ(resolveImportThunk(&endless), &endless);
  EXPECT_EQ(windowsPlatformId(), 2);
}

TEST(WindowsSystem, TheNullDeviceIsNoTerminal) {
  const int null = _open("NUL", _O_WRONLY);
  EXPECT_TRUE(null >= 0 && !isTerminal(null));
  _close(null);
}

}  // namespace

}  // namespace vel::platform
