// Traces an entry, and prints which environment variables the library has used. With a user's number and a
// program as arguments it becomes that user and runs the program.
#include <grp.h>
#include <sys/auxv.h>
#include <unistd.h>

#include <cstdlib>
#include <iostream>

#include "vel_include/vel_consoleui.h"
#include "vel_include/vel_messages.h"
#include "vel_include/vel_process.h"
#include "vel_include/vel_trace.h"

namespace {

constexpr int kExitOtherUser = 1;

int runAs(const char* number, char* program) {
  const auto id = static_cast<unsigned int>(std::strtoul(number, nullptr, 10));
  char* const arguments[] = {program, nullptr};
  if (setgroups(0, nullptr) == 0 && setgid(id) == 0 && setuid(id) == 0) execv(program, arguments);
  return kExitOtherUser;
}

void show(const char* label, const char* text) {
  std::cout << label << ' ' << (text != nullptr ? text : "-") << '\n';
}

void show(const char* label, bool yes) {
  show(label, yes ? "yes" : "no");
}

}  // namespace

int main(int argc, char** argv) {
  if (argc == 3) return runAs(argv[1], argv[2]);
  velTraceCreateInstance("unit", nullptr);
  velTraceDump(VelEnTraceDetail::LOW, 1, VelEnTraceDataType::DATA_NONE, "main", "entry", "", 0);
  show("privileged", getauxval(AT_SECURE) != 0);
  show("traced", velTraceIsEnabled());
  velTraceDeleteInstance();
  show("scratch", velGetTmpDirectory());
  show("quoted", VelClConsoleUIParams("program").mustQuoteStrings());
  show("program", VelClExeFile(VelClFilename("/missing/planted_program")).isFoundInSystemPath());
  show("library", VelClDllFile(VelClFilename("planted_library.dll")).isValid());
  show("catalog", VelClMessageCatalog("planted_catalog.dll").isValid());
  // A variable that the program itself queries is not hidden from it.
  show("asked", VelClEnvironmentVariableQueryOnly("UNIT_TRACE_ACTIVE").getValue());
  // The leak check of a sanitizer, which runs at exit, fails in a privileged program.
  std::cout.flush();
  std::_Exit(0);
}
