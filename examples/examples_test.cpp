// The examples print what they promise.
#include <gtest/gtest.h>

#include "platform/test/session.h"

TEST(Examples, PrintWhatTheyPromise) {
  vel::test::expectSession(VEL_TEST_DATA "test/examples.session");
}
