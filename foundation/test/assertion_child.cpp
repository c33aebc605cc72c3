// Fails the assertion that the argument names, so that a test can check the report and the exit.
#include <csignal>
#include <cstring>
#include <string>

#include "vel_include/vel_error.h"

namespace {
extern "C" void assertAgain(int) {
  std::signal(SIGABRT, SIG_DFL);
  vel__assert("second", "again.cpp", 2);
}
}  // namespace

// NOLINTNEXTLINE(bugprone-exception-escape): tests what happens to an exception that nobody catches
int main(int argc, char** argv) {
  const char* kind = argc > 1 ? argv[1] : "";
  if (std::strcmp(kind, "plain") == 0) vel__assert("a == b", "dir/file.cpp", 42);
  if (std::strcmp(kind, "message") == 0)
    vel__assert_msg("p != 0", "file.cpp", 4294967295U, "run", "broken state");
  if (std::strcmp(kind, "function-only") == 0) vel__assert_msg("p != 0", "file.cpp", 1, "run", nullptr);
  if (std::strcmp(kind, "macro") == 0) VEL_ASSERT(argc == 0);
  if (std::strcmp(kind, "long") == 0) {
    const std::string expression(30'000, 'e'), module(3000, 'm'), function(2001, 'f'), message(100'000, 't');
    vel__assert_msg(expression.c_str(), module.c_str(), 5, function.c_str(), message.c_str());
  }
  if (std::strcmp(kind, "nested") == 0) {
    std::signal(SIGABRT, assertAgain);
    vel__assert("first", "once.cpp", 1);
  }
  if (std::strcmp(kind, "throw") == 0)
    throw VelClExceptionFatal(MEMMGR_USER_OUT_OF_MEMORY, VelEnErrorClass::OUT_OF_MEMORY,
                              VelEnErrorAction::TERMINATE, "uncaught");
  return 0;
}
