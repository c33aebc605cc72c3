// The file that is written beside a target and then moved into its place, for saving and for copying.
#pragma once

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <string_view>
#include <utility>

#include "platform/file_identity.h"
#include "platform/replacing.h"
#include "platform/system_error.h"
#include "platform/windows/native_text.h"

namespace vel::platform {

/// Owns a file handle.
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

/// Whether a full name is a device's: "nul", "con" and their like, which cannot be replaced.
bool isDevice(const wchar_t* fullName) noexcept;

/// Opens a file to query it or to change its rights, sharing it with everybody who has it open. A link is
/// followed.
HANDLE openForQuery(const wchar_t* name, DWORD access) noexcept;

/// The names in a Replacement, which are UTF-8 whatever the process's encoding is, so that every full name
/// fits.
class OwnName : public WideText {
 public:
  explicit OwnName(const char* name) noexcept : WideText(name, CP_UTF8) {}
};
inline DWORD setOwnName(std::wstring_view name, char (&out)[kFullNameCapacity]) noexcept {
  return narrowText(name, CP_UTF8, out, sizeof out);
}

/// Sets the target to the full name of a file name.
SystemError setTarget(const char* name, Replacement& replacement) noexcept;

/// Returns all zeros if the system cannot tell.
FileIdentity identityOf(HANDLE file) noexcept;

/// Sets `temporary` to an unpredictable name of 20 characters in the target's directory, so that nobody can
/// create the file beforehand.
SystemError makeTemporaryName(Replacement& replacement) noexcept;

/// Copies the access control list from one file to another; false if that fails.
bool copyRights(HANDLE from, HANDLE to) noexcept;

}  // namespace vel::platform
