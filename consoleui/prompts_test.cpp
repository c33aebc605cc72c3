// Whole dialogues with redirected input: prompt_child asks, and its bytes are compared. A terminal is
// platform/posix/console_test.cpp's matter.
#include <gtest/gtest.h>

#include "platform/test/session.h"

namespace {

TEST(Prompts, FollowTheSession) {
  vel::test::expectSession(VEL_TEST_DATA "test/prompts.session");
}

}  // namespace
