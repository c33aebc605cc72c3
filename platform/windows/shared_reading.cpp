// Opens files for reading without keeping others from renaming or removing them.
#include <fcntl.h>
#include <io.h>

#include <cerrno>
#include <cstdint>

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include "platform/byte_files.h"
#include "platform/windows/native_text.h"
#include "platform/windows/system_errors.h"

namespace vel::platform {

// The runtime's own functions open without FILE_SHARE_DELETE, which would keep others from renaming the file.
SystemError openForSharedReading(const char* name, int& descriptor) noexcept {
  const WideName wide(name);
  if (!wide.isValid()) return errnoOf(wide.error());
  const HANDLE file =
      CreateFileW(wide.get(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                  OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL | FILE_FLAG_SEQUENTIAL_SCAN, nullptr);
  if (file == INVALID_HANDLE_VALUE) return errnoOf(GetLastError());
  descriptor = _open_osfhandle(reinterpret_cast<std::intptr_t>(file), _O_RDONLY | _O_BINARY | _O_NOINHERIT);
  if (descriptor != -1) return 0;
  const SystemError error = errno;
  CloseHandle(file);
  return error;
}

}  // namespace vel::platform
