// The wide command line of this process, and the arguments that the C runtime made of its narrow form.
#include "platform/own_command_line.h"

#include <cstdlib>
#include <cstring>

#include "platform/windows/native_text.h"

namespace vel::platform {

std::size_t ownCommandLine(char* out, std::size_t capacity) noexcept {
  const std::wstring_view line(GetCommandLineW());
  // A unit becomes at most three bytes, a pair of surrogates four.
  const std::size_t needed = 3 * line.size() + 1;
  if (needed <= capacity) out[readableText(line, CP_UTF8, Similar::Refuse, out, capacity - 1)] = '\0';
  return needed;
}

bool areArgumentsOfMain(int count, const char* const* arguments) noexcept {
  // The runtime's own vector; the start-up code of a program may pass a copy to main. It is null if the
  // program has another runtime than this library.
  if (__argv == nullptr || arguments == nullptr || count != __argc) return false;
  for (int i = 0; i < count; ++i)
    if (arguments[i] == nullptr || std::strcmp(arguments[i], __argv[i]) != 0) return false;
  return true;
}

}  // namespace vel::platform
