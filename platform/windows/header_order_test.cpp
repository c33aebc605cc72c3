// The public headers before windows.h.
#include "vel_include/vel.h"

// windows.h comes last.
#include <windows.h>

#include <gtest/gtest.h>

namespace {

TEST(PublicHeaders, MayComeBeforeWindowsHeader) {
  EXPECT_EQ(
      VelClExceptionFatal(PROCESS_COULD_NOT_KILL, VelEnErrorClass::LOGIC, VelEnErrorAction::NO_ACTION, "")
          .getId(),
      static_cast<unsigned long>(PROCESS_COULD_NOT_KILL));
}

}  // namespace
