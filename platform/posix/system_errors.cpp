// Errors of the system and their texts.
#include <cstring>

#include "platform/system_error.h"

namespace vel::platform {
namespace {

/// Return the text that strerror_r found: POSIX's function writes it to the buffer and returns a number, that
/// of some C libraries returns the text.
[[maybe_unused]] const char* textOf(int failed, const char* buffer) noexcept {
  return failed == 0 ? buffer : "";
}
[[maybe_unused]] const char* textOf(const char* text, const char*) noexcept {
  return text;
}

}  // namespace

SystemError preciseErrno(NativeError error) noexcept {
  return static_cast<SystemError>(error);
}

std::size_t systemErrorText(NativeError error, char* out, std::size_t capacity) noexcept {
  char buffer[256];
  const char* const text = textOf(strerror_r(static_cast<int>(error), buffer, sizeof buffer), buffer);
  const std::size_t size = strnlen(text, capacity - 1);
  std::memcpy(out, text, size);
  out[size] = '\0';
  return size;
}

}  // namespace vel::platform
