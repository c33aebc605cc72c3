// Columns count characters where texts are UTF-8.
#include <gtest/gtest.h>

#include <sstream>

#include "platform/test/posix/variable.h"
#include "vel_include/vel_consoleui.h"

namespace {

TEST(LabelColumn, CountsCharactersOfUtf8Texts) {
  std::ostringstream stream;
  const vel::test::Variable locale("LC_ALL", "de_DE.UTF-8");
  VelClConsoleUI ui(0, nullptr);
  ui.setOutputStream(stream);
  ui.setFormatWidth(8);
  ui.format("Gr\u00F6\u00DFe", "5");
  EXPECT_EQ(stream.str(), "  Gr\u00F6\u00DFe...: 5\n");
}

}  // namespace
