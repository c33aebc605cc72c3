// The main function of every tool, and the end of a tool that runs out of memory or may write no more.
//
// Lack of memory arrives in two ways. In most cases an exception passes through toolMain. The others are in
// functions that must not throw: there the C++ runtime calls the terminate handler instead, in the middle of
// whatever ran. Both ways give the same message and exit code, so that scripts need to know one only.
#include "tools/tool_main.h"

#include <cstdlib>
#include <cstring>
#include <exception>
#include <new>

#include "platform/byte_files.h"
#include "platform/signals.h"
#include "platform/text_encoding.h"
#include "tools/safe_terminal.h"
#include "tools/translation.h"
#include "vel_include/vel_utf8.h"

namespace vel::tools {
namespace {

std::terminate_handler previousHandler = nullptr;

bool isOutOfMemory(const VelClException& exception) {
  return exception.getClass() == VelEnErrorClass::OUT_OF_MEMORY;
}

/// Allocates nothing.
void reportOutOfMemory() noexcept {
  for (const char* const text : {kToolName, ": ", translated("out of memory"), "\n"})
    static_cast<void>(platform::writeBytes(platform::kStandardError, text, std::strlen(text)));
}

/// Whether the process ends for lack of memory. If not even the exception object could be allocated, there is
/// no current exception.
bool endsForLackOfMemory() noexcept {
  const std::exception_ptr current = std::current_exception();
  if (current == nullptr) return true;
  try {
    std::rethrow_exception(current);
  } catch (const std::bad_alloc&) {
    return true;
  } catch (const VelClException& exception) {
    return isOutOfMemory(exception);
  } catch (...) {
    return false;
  }
}

/// The terminate handler. It leaves with _Exit: destructors and exit handlers could need memory again, and
/// the objects that they work on may be in an inconsistent state.
[[noreturn]] void terminate() {
  if (!endsForLackOfMemory()) previousHandler();
  reportOutOfMemory();
  std::_Exit(kExitOutOfMemory);
}

int runTool(int argc, char** argv) {
  // A tool has a copy of the seam in addition to that of the library.
  velUseUtf8();
  platform::useUtf8();
  argv = velUtf8Arguments(&argc, argv);
  previousHandler = std::set_terminate(terminate);
  if (argv == nullptr) {
    reportOutOfMemory();
    return kExitOutOfMemory;
  }
  // A tool reports a failure to write, and ends with the exit code for that.
  platform::ignoreFileSizeSignal();
  useTranslations(kTranslations);
  const SafeTerminal terminal;
  try {
    return toolMain(argc, argv);
  } catch (const std::bad_alloc&) {
    reportOutOfMemory();
  } catch (const VelClException& exception) {
    // Any other exception that nobody handled is a bug in the tool. It leaves main, so that the runtime
    // reports it and a debugger stops.
    if (!isOutOfMemory(exception)) throw;
    reportOutOfMemory();
  }
  return kExitOutOfMemory;
}

}  // namespace

void rethrowIfOutOfMemory(const VelClException& exception) {
  if (isOutOfMemory(exception)) throw;
}

}  // namespace vel::tools

int main(int argc, char** argv) {
  return vel::tools::runTool(argc, argv);
}
