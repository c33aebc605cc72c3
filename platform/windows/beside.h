// The file that is written beside a target and takes its place: for saving and for copying.
#pragma once

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <utility>

#include "platform/file_identity.h"
#include "platform/replacing.h"
#include "platform/system_error.h"

namespace vel::platform {

class FileHandle {
 public:
  explicit FileHandle(HANDLE handle) noexcept : handle_(handle) {}
  FileHandle(const FileHandle&) = delete;
  FileHandle& operator=(const FileHandle&) = delete;
  ~FileHandle() {
    if (isOpen()) CloseHandle(handle_);
  }

  bool isOpen() const noexcept { return handle_ != INVALID_HANDLE_VALUE; }
  HANDLE get() const noexcept { return handle_; }
  HANDLE release() noexcept { return std::exchange(handle_, INVALID_HANDLE_VALUE); }

 private:
  HANDLE handle_;
};

/// "nul", "con" and their like, as full names. They cannot be replaced.
bool isDevice(const char* fullName) noexcept;

/// To ask about a file, or change its rights; whoever has it open is not disturbed. A link is followed.
HANDLE openForQuery(const char* name, DWORD access) noexcept;

/// All zeros when the system cannot tell.
FileIdentity identityOf(HANDLE file) noexcept;

/// Sets `temporary` to a full name of 20 characters in the target's directory that nobody can guess, and so
/// nobody can take before.
SystemError makeTemporaryName(Replacement& replacement) noexcept;

/// Gives a file the access rights of another one; false when that cannot be done.
bool copyRights(HANDLE from, HANDLE to) noexcept;

}  // namespace vel::platform
