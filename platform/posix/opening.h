// Opening files by the system's own names, for functions that translate names and for those that do not.
// Names are relative to an open directory, or to AT_FDCWD.
#pragma once

#include "platform/append.h"
#include "platform/byte_files.h"
#include "platform/posix/descriptor.h"
#include "platform/system_error.h"

namespace vel::platform {

/// As openForReading.
SystemError openForReadingAt(int directory, const char* path, PipeWithoutWriter pipe,
                             Descriptor& file) noexcept;
/// As openForAppending.
SystemError openForAppendingAt(int directory, const char* path, AppendTo target, Descriptor& file) noexcept;

/// Makes reads and writes wait again after a file was opened with O_NONBLOCK.
SystemError letWait(int descriptor) noexcept;

}  // namespace vel::platform
