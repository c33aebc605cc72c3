// Names as POSIX systems have them: bytes.
#include "platform/path_names.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "base/ascii.h"

namespace vel::platform {

bool usesBackslashNames() noexcept {
  return false;
}

std::size_t findUnusableByte(std::string_view name) noexcept {
  return std::min(name.find('\0'), name.size());
}

int compareBackslashNames(std::string_view a, std::string_view b) noexcept {
  const std::size_t length = std::min(a.size(), b.size());
  for (std::size_t i = 0; i < length; ++i) {
    const int difference =
        static_cast<unsigned char>(toAsciiUpper(a[i])) - static_cast<unsigned char>(toAsciiUpper(b[i]));
    if (difference != 0) return difference;
  }
  return int{a.size() > length} - int{b.size() > length};
}

NativeError workingDirectory(char, char* out, std::size_t capacity, std::size_t& size) noexcept {
  size = std::max<std::size_t>(2 * capacity, 256);
  if (capacity == 0) return 0;
  if (getcwd(out, capacity) == nullptr) return errno == ERANGE ? 0 : static_cast<NativeError>(errno);
  size = std::strlen(out);
  // getcwd may give "(unreachable)..." for a directory outside this process's root.
  return out[0] == '/' ? 0 : ENOENT;
}

SystemError narrowName(std::string_view name, char* out, std::size_t capacity, std::size_t& size) noexcept {
  if (name.size() > capacity) return ERANGE;
  size = name.copy(out, name.size());
  return 0;
}

SystemError utf8Name(std::string_view narrow, char* out, std::size_t capacity, std::size_t& size) noexcept {
  return narrowName(narrow, out, capacity, size);
}

}  // namespace vel::platform
