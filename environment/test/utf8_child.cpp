// A child of utf8_test.cpp. Writes what it received to the file that its second argument names, one text a
// line: its arguments as far as they follow, a variable, and a variable with a name beyond ASCII.
#include <cstring>
#include <filesystem>
#include <fstream>

#include "vel_include/vel_codepage.h"
#include "vel_include/vel_consoleui.h"
#include "vel_include/vel_environment.h"
#include "vel_include/vel_utf8.h"

namespace {

std::filesystem::path pathOf(const char* name) {
  return {std::u8string(name, name + std::strlen(name))};
}

void write(std::ostream& stream, const char* text) {
  stream << (text != nullptr ? text : "none") << '\n';
}

}  // namespace

/// The first argument is "vector" for velUtf8Arguments, "ui" for those of VelClConsoleUI, "own" for the
/// same with a vector that this program made, or "plain" for main's own.
int main(int count, char** mainArguments) {
  const char* const task = mainArguments[1];
  if (std::strcmp(task, "plain") != 0) velUseUtf8();
  int utf8Count = count;
  char** const inUtf8 = velUtf8Arguments(&utf8Count, mainArguments);
  if (utf8Count != count || inUtf8[count] != nullptr || velUtf8Arguments(&utf8Count, mainArguments) != inUtf8)
    return 1;
  const char* const* arguments = inUtf8;
  const char* const others[] = {"program", "own", nullptr};
  const VelClConsoleUI ui(count, mainArguments), otherUi(2, others);
  if (std::strcmp(task, "ui") == 0) arguments = ui.getArgv();
  if (otherUi.getArgv() != others) return 2;
  // Without UTF-8 the test passes no name beyond ASCII.
  std::ofstream stream(pathOf(arguments[2]), std::ios::binary);
  for (int i = 3; i < count; ++i) write(stream, arguments[i]);
  write(stream, VelClEnvironmentVariableQueryOnly("VEL_TEST_VARIABLE").getValue());
  write(stream, VelClEnvironmentVariableQueryOnly("VEL_TEST_ПЕРЕМЕННАЯ").getValue());
  stream << velIsUtf8Used() << '\n';
  return stream.flush() ? 0 : 4;
}
