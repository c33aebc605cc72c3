// Runs the examples and compares their output with the output that the manual shows.
#include "platform/test/test.h"
#include "vel_include/vel_strict_conversion.h"

TEST(Examples, PrintWhatTheyPromise) {
  vel::test::expectSession(VEL_TEST_DATA "test/examples.session");
}

TEST(Examples, OfTheToolsPrintWhatTheirPagesShow) {
  vel::test::expectSession(VEL_TEST_DATA "test/tools.session");
}

TEST(Examples, ConvertRecordsBothWays) {
  if (VelClStrictConversion::getRouteFromUcs2(VelClCCSID(1047)) == VelClStrictConversion::VelEnRoute::NONE)
    GTEST_SKIP() << "ICU is not installed";
  vel::test::expectSession(VEL_TEST_DATA "test/records.session");
}
