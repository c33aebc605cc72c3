// The temporary file beside a target: its name, identity and rights. Creating and moving it are the work of
// replacing.cpp and file_copy.cpp.

// Makes stdlib.h declare rand_s, which gives random numbers of the system.
#define _CRT_RAND_S

#include "platform/windows/beside.h"

#include <stdlib.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <cwchar>

#include "platform/windows/file_words.h"

namespace vel::platform {

bool isDevice(const wchar_t* fullName) noexcept {
  // GetFullPathName puts the names of devices into the device namespace.
  return std::wcsncmp(fullName, L"\\\\.\\", 4) == 0;
}

HANDLE openForQuery(const wchar_t* name, DWORD access) noexcept {
  return CreateFileW(name, FILE_READ_ATTRIBUTES | access, kShareAll, nullptr, OPEN_EXISTING,
                     FILE_ATTRIBUTE_NORMAL, nullptr);
}

SystemError setTarget(const char* name, Replacement& replacement) noexcept {
  const WideName wide(name);
  if (!wide.isValid()) return errnoOf(wide.error());
  WideBuffer full;
  const DWORD length = fullName(wide.get(), full);
  if (length == 0) return errnoOf(GetLastError());
  const DWORD error = setOwnName({full.get(), length}, replacement.target);
  return error == ERROR_INSUFFICIENT_BUFFER ? ENAMETOOLONG : errnoOf(error);
}

FileIdentity identityOf(HANDLE file) noexcept {
  BY_HANDLE_FILE_INFORMATION status;
  if (GetFileInformationByHandle(file, &status) == FALSE) return {};
  return identityIn(status);
}

SystemError makeTemporaryName(Replacement& replacement) noexcept {
  unsigned int high = 0, low = 0;
  if (rand_s(&high) != 0 || rand_s(&low) != 0) return EIO;
  const char* const separator = std::strrchr(replacement.target, '\\');
  const int directory = separator != nullptr ? static_cast<int>(separator - replacement.target) + 1 : 0;
  const int length = std::snprintf(replacement.temporary, sizeof replacement.temporary, "%.*s~%07x%08x.tmp",
                                   directory, replacement.target, high >> 4, low);
  return length > 0 && static_cast<std::size_t>(length) < sizeof replacement.temporary ? 0 : ENAMETOOLONG;
}

bool copyRights(HANDLE from, HANDLE to) noexcept {
  // Only the access list: setting an owner needs a privilege. A list that does not fit counts as not copied.
  alignas(void*) unsigned char rights[4096];
  DWORD size = 0;
  return GetKernelObjectSecurity(from, DACL_SECURITY_INFORMATION, rights, sizeof rights, &size) != FALSE &&
         SetKernelObjectSecurity(to, DACL_SECURITY_INFORMATION, rights) != FALSE;
}

}  // namespace vel::platform
