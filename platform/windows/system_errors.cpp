// Translates Windows error codes to errno values, which the functions of platform/ return.
#include "platform/windows/system_errors.h"

#include <cerrno>

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

namespace vel::platform {

SystemError errnoOf(std::uint32_t error) noexcept {
  switch (error) {
    case ERROR_SUCCESS:
      return 0;
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
    case ERROR_INVALID_NAME:
    case ERROR_BAD_PATHNAME:
      return ENOENT;
    case ERROR_DIRECTORY:
      return ENOTDIR;
    case ERROR_DIR_NOT_EMPTY:
      return ENOTEMPTY;
    case ERROR_FILE_EXISTS:
    case ERROR_ALREADY_EXISTS:
      return EEXIST;
    case ERROR_TOO_MANY_OPEN_FILES:
      return EMFILE;
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL:
      return ENOSPC;
    case ERROR_FILENAME_EXCED_RANGE:
      return ENAMETOOLONG;
    case ERROR_NO_UNICODE_TRANSLATION:
      return EILSEQ;
    case ERROR_NOT_ENOUGH_MEMORY:
      return ENOMEM;
    case ERROR_INSUFFICIENT_BUFFER:
      return ERANGE;
    default:
      return EACCES;
  }
}

}  // namespace vel::platform
