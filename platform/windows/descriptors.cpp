// Translation modes of the C runtime's descriptors, and whether one is a console.
#include <fcntl.h>
#include <io.h>

#include <cstdint>
#include <cstdlib>

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include "platform/descriptors.h"

namespace vel::platform {

namespace {

void ignoreParameter(const wchar_t*, const wchar_t*, const wchar_t*, unsigned int, std::uintptr_t) {}

/// By default the runtime ends the process when it is asked about a descriptor that is not open. While this
/// exists, it returns an error instead.
class ToleratedParameters {
 public:
  ToleratedParameters() noexcept : previous_(_set_invalid_parameter_handler(ignoreParameter)) {}
  ToleratedParameters(const ToleratedParameters&) = delete;
  ToleratedParameters& operator=(const ToleratedParameters&) = delete;
  ~ToleratedParameters() { _set_invalid_parameter_handler(previous_); }

 private:
  _invalid_parameter_handler previous_;
};

HANDLE handleOf(int descriptor) noexcept {
  const ToleratedParameters tolerated;
  return reinterpret_cast<HANDLE>(_get_osfhandle(descriptor));
}

}  // namespace

DescriptorMode setDescriptorMode(int descriptor, DescriptorMode mode) noexcept {
  const ToleratedParameters tolerated;
  switch (_setmode(descriptor, mode == DescriptorMode::Binary ? _O_BINARY : _O_TEXT)) {
    case -1:
      return DescriptorMode::NotOpen;
    case _O_TEXT:
      return DescriptorMode::Text;
    case _O_BINARY:
      return DescriptorMode::Binary;
    default:
      return DescriptorMode::Other;
  }
}

bool isTerminal(int descriptor) noexcept {
  // _isatty is also true for the null device and other character devices; only a console has a console mode.
  DWORD mode = 0;
  return GetConsoleMode(handleOf(descriptor), &mode) != FALSE;
}

bool enableTerminalSequences(int descriptor) noexcept {
  const HANDLE console = handleOf(descriptor);
  DWORD mode = 0;
  return GetConsoleMode(console, &mode) != FALSE &&
         SetConsoleMode(console, mode | ENABLE_PROCESSED_OUTPUT | ENABLE_VIRTUAL_TERMINAL_PROCESSING) !=
             FALSE;
}

}  // namespace vel::platform
