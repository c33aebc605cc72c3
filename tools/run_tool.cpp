#include "tools/run_tool.h"

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <new>

#include "tools/safe_terminal.h"

namespace vel::tools {
namespace {

const char* toolName = "";
std::terminate_handler otherwise = nullptr;

bool tellsOutOfMemory(const VelClException& exception) {
  return exception.getClass() == VelEnErrorClass::OUT_OF_MEMORY;
}

/// Needs no memory: standard error is not buffered.
void tellOutOfMemory() noexcept {
  std::fputs(toolName, stderr);
  std::fputs(": out of memory\n", stderr);
}

/// Whether the exception that ends the process is for memory. There is none when even the exception found
/// no memory.
bool endsForMemory() noexcept {
  const std::exception_ptr current = std::current_exception();
  if (current == nullptr) return true;
  try {
    std::rethrow_exception(current);
  } catch (const std::bad_alloc&) {
    return true;
  } catch (const VelClException& exception) {
    return tellsOutOfMemory(exception);
  } catch (...) {
    return false;
  }
}

/// Functions that must not throw end here as well. Destructors and exit handlers do not run any more.
[[noreturn]] void terminate() {
  if (!endsForMemory()) otherwise();
  tellOutOfMemory();
  std::_Exit(kExitOutOfMemory);
}

}  // namespace

int runTool(const char* name, int argc, char** argv, int (*run)(int argc, char** argv)) {
  toolName = name;
  otherwise = std::set_terminate(terminate);
  const SafeTerminal terminal;
  try {
    return run(argc, argv);
  } catch (const std::bad_alloc&) {
    tellOutOfMemory();
  } catch (const VelClException& exception) {
    // Whatever else nobody has handled is a fault of the tool.
    if (!tellsOutOfMemory(exception)) throw;
    tellOutOfMemory();
  }
  return kExitOutOfMemory;
}

void passOutOfMemory(const VelClException& exception) {
  if (tellsOutOfMemory(exception)) throw;
}

}  // namespace vel::tools
