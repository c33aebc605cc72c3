// Runs the examples and compares their output with the output that the manual shows.
#include "platform/test/test.h"

TEST(Examples, PrintWhatTheyPromise) {
  vel::test::expectSession(VEL_TEST_DATA "test/examples.session");
}
