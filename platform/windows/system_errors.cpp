// Translates Windows error codes to errno values, which most functions of platform/ return, and to texts.
#include "platform/windows/system_errors.h"

#include <algorithm>
#include <cerrno>
#include <cwchar>
#include <iterator>

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

SystemError preciseErrno(NativeError error) noexcept {
  switch (error) {
    case ERROR_ACCESS_DENIED:
    case ERROR_PRIVILEGE_NOT_HELD:
    case ERROR_WRITE_PROTECT:
    case ERROR_NETWORK_ACCESS_DENIED:
      return EACCES;
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION:
    case ERROR_BUSY:
    case ERROR_CURRENT_DIRECTORY:
    case ERROR_USER_MAPPED_FILE:
    case ERROR_DELETE_PENDING:
      return EBUSY;
    case ERROR_BAD_NETPATH:
    case ERROR_BAD_NET_NAME:
    case ERROR_INVALID_DRIVE:
    case ERROR_NOT_READY:
      return ENOENT;
    case ERROR_NO_UNICODE_TRANSLATION:
      return EILSEQ;
    case ERROR_INVALID_PARAMETER:
      return EINVAL;
    case ERROR_NOT_ENOUGH_MEMORY:
    case ERROR_OUTOFMEMORY:
    case ERROR_COMMITMENT_LIMIT:
      return ENOMEM;
    case ERROR_NOT_SUPPORTED:
    case ERROR_INVALID_FUNCTION:
    case ERROR_CALL_NOT_IMPLEMENTED:
      return ENOTSUP;
    default: {
      // EACCES is errnoOf's answer to a code that it does not know.
      const SystemError translated = errnoOf(error);
      return translated != EACCES ? translated : EIO;
    }
  }
}

std::size_t systemErrorText(NativeError error, char* out, std::size_t capacity) noexcept {
  wchar_t wide[256];
  DWORD length = FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, error, 0,
                                wide, static_cast<DWORD>(std::size(wide)), nullptr);
  while (length > 0 && (wide[length - 1] <= L' ' || wide[length - 1] == L'.')) --length;
  std::replace(wide, wide + length, L'\r', L' ');
  std::replace(wide, wide + length, L'\n', L' ');
  const int size = length == 0 ? 0
                               : WideCharToMultiByte(CP_UTF8, 0, wide, static_cast<int>(length), out,
                                                     static_cast<int>(capacity - 1), nullptr, nullptr);
  out[size] = '\0';
  return static_cast<std::size_t>(size);
}

}  // namespace vel::platform
