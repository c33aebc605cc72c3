// The public headers beside windows.h, which defines some of their names as macros.
#include <windows.h>

// windows.h comes first.
#include "vel_include/vel.h"
#include "vel_include/vel_c.h"

#if !defined(NO_ERROR) || !defined(IGNORE)
#error the headers must leave the macros of windows.h as they were
#endif

#include <gtest/gtest.h>

namespace {

TEST(PublicHeaders, LiveBesideWindowsMacros) {
  EXPECT_EQ(VelEnErrorAction::NO_ACTION, static_cast<VelEnErrorAction>(IGNORE));
  EXPECT_EQ(static_cast<long>(VEL_NO_ERROR), NO_ERROR);
  _VelStError error(FILE_COULD_NOT_COPY, VelEnErrorClass::IO_PROBLEM);
  error.reset();
  EXPECT_EQ(error.getErrorId(), static_cast<unsigned long>(NO_ERROR));
}

}  // namespace
