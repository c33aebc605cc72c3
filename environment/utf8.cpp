// Switches UTF-8 on, and makes the argument vector of the process from its wide command line.
#include "vel_include/vel_utf8.h"

#include <cstddef>
#include <ios>

#include "environment/command_line.h"
#include "environment/utf8_arguments.h"
#include "foundation/allocator.h"
#include "platform/console_text.h"
#include "platform/languages.h"
#include "platform/own_command_line.h"
#include "platform/text_encoding.h"
#include "vel_include/vel_error.h"

namespace vel::environment {
namespace {

/// Returns null where the arguments of main are what the system passed.
Arguments* makeOwnArguments() {
  const std::size_t size = platform::ownCommandLine(nullptr, 0);
  if (size == 0) return nullptr;
  const OwnedText line(static_cast<char*>(VelClMemoryManager::malloc(size)));
  platform::ownCommandLine(line.get(), size);
  return create<Arguments>(line.get());
}

/// Never freed: main and everybody whom it calls have the texts.
const Arguments* ownArguments() {
  static const Arguments* const arguments = makeOwnArguments();
  return arguments;
}

}  // namespace

ArgumentVector inUtf8(int count, const char* const* arguments) {
  if (!velIsUtf8Used()) return {count, arguments};
  // A program with the manifest need not call velUseUtf8.
  platform::useConsoleStreams();
  if (!platform::areArgumentsOfMain(count, arguments)) return {count, arguments};
  const Arguments* const own = ownArguments();
  // The runtime counts otherwise if it has expanded wildcards. Its arguments are kept then.
  if (own == nullptr || own->count() != static_cast<std::size_t>(count)) return {count, arguments};
  return {count, own->get()};
}

}  // namespace vel::environment

void velUseUtf8(void) {
  vel::platform::useUtf8();
  try {
    vel::platform::useConsoleStreams();
  } catch (const std::ios::failure&) {
    // A stream that throws when its state is set has lost nothing but the console's characters.
  }
}

bool velIsUtf8Used(void) {
  return vel::platform::ansiIsUtf8();
}

char** velUtf8Arguments(int* count, char** arguments) {
  if (!velIsUtf8Used()) return arguments;
  try {
    const vel::environment::Arguments* const own = vel::environment::ownArguments();
    if (own == nullptr) return arguments;
    *count = static_cast<int>(own->count());
    return const_cast<char**>(own->get());
  } catch (const VelClException&) {
    *count = 0;
    return nullptr;
  }
}
