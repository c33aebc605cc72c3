// Columns count characters where texts are UTF-8.
#include <gtest/gtest.h>

#include <cstdlib>
#include <sstream>

#include "vel_include/vel_consoleui.h"

namespace {

TEST(LabelColumn, CountsCharactersOfUtf8Texts) {
  std::ostringstream stream;
  const char* const old = std::getenv("LC_ALL");
  const std::string saved = old != nullptr ? old : "";
  setenv("LC_ALL", "de_DE.UTF-8", 1);
  VelClConsoleUI ui(0, nullptr);
  ui.setOutputStream(stream);
  ui.setFormatWidth(8);
  ui.format(
      "Gr\xC3\xB6\xC3\x9F"
      "e",
      "5");
  saved.empty() ? unsetenv("LC_ALL") : setenv("LC_ALL", saved.c_str(), 1);
  EXPECT_EQ(stream.str(),
            "  Gr\xC3\xB6\xC3\x9F"
            "e...: 5\n");
}

}  // namespace
