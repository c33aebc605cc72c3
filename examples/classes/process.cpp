// Environment variables, processes and dynamic libraries. Started with an argument it is its own child.
#include <vel.h>

#include <iostream>
#include <string>

namespace {

void showVariable(const VelClEnvironmentVariableABase& variable) {
  std::cout << variable.getName() << '=' << (variable.hasValue() ? variable.getValue() : "(not set)")
            << (variable.hasValueEnabled() ? " enables\n" : "\n");
}

/// Any way to start a program.
bool start(VelClNewProcessABase& process) {
  process.addArgument("child");
  if (process.launch()) return true;
  std::cout << "not started: " << process.getResult() << '\n';
  return false;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc > 1) return 7;
  VelClEnvironmentVariable variable("DEMO_SWITCH", "Yes");
  showVariable(variable);
  variable.resetValue();
  showVariable(VelClEnvironmentVariableQueryOnly("DEMO_SWITCH"));

  const VelClExeFile program{VelClFilename(argv[0])};
  VelClNewSyncProcess waited(program);
  if (start(waited)) std::cout << "exit code " << waited.getResult() << '\n';
  VelClNewAsyncProcess detached(program);
  if (start(detached)) {
    // It may have ended already, which is no error.
    VelClProcess child(static_cast<unsigned int>(detached.getResult()));
    std::cout << "ended: " << child.kill() << '\n';
  }

  const VelClProcessProperty process;
  const VelClThreadProperty thread;
  std::cout << "numbers: " << (process.getProcessId() != 0) << (thread.getThreadId() != 0) << '\n';

  const VelClDllFile missing(VelClFilename("no_such_library"));
  std::cout << "missing: " << missing.isValid() << '\n';
  // The procedure is valid as long as the object.
  const VelClDllProcLoaderFile library(VelClFilename("qamc5032"));
  using Level = const char* (*)();
  const VelProcedure procedure = library.getProcedure("velLibraryGetLevel");
  // Compilers warn of a direct cast.
  const auto level = reinterpret_cast<Level>(reinterpret_cast<void (*)()>(procedure));
  std::cout << "level: " << (level != nullptr && std::string(level()) == velLibraryGetLevel()) << '\n';
}
