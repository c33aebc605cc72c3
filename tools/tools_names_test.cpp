// Tests names of files in all scripts.
#include "platform/test/test.h"

namespace {

TEST(ToolsNames, MayHaveAnyCharacters) {
  vel::test::expectSession(VEL_TEST_DATA "test/names.session", true);
}

}  // namespace
