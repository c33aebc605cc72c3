// Runs velini as scripts do.
#include <gtest/gtest.h>

#include "platform/test/session.h"

namespace {

TEST(Velini, FollowsTheSession) {
  vel::test::expectSession(VEL_TEST_DATA "velini/test/velini.session", true);
}

}  // namespace
