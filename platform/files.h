// Files by name: attributes, status, removing, renaming, and the directories that names start from. File
// names may have either kind of separator; POSIX systems translate backslash names, see posix/native_path.h.
#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/file_identity.h"
#include "platform/system_error.h"

namespace vel::platform {

inline constexpr std::uint32_t kAttributeReadOnly = 0x1;
inline constexpr std::uint32_t kAttributeHidden = 0x2;
inline constexpr std::uint32_t kAttributeDirectory = 0x10;
/// The attributes of a missing entry: all bits are set.
inline constexpr std::uint32_t kAttributesUnreadable = 0xFFFFFFFF;

struct EntryStatus {
  std::uint64_t sizeInBytes;  ///< 0 for a directory
  std::int64_t changed;       ///< creation on Windows, status change on POSIX; seconds since 1970
  std::int64_t accessed;      ///< seconds since 1970
  std::int64_t modified;      ///< seconds since 1970
};

/// The functions down to setReadOnly follow links.
bool entryExists(const char* name) noexcept;
bool isWritable(const char* name) noexcept;
std::uint32_t attributesOf(const char* name) noexcept;
SystemError statusOf(const char* name, EntryStatus& status) noexcept;
/// Returns zeros if there is no such entry.
FileIdentity identityOfFile(const char* name) noexcept;

/// Sets or clears write permission and nothing else. Clearing read-only gives write permission to the owner.
SystemError setReadOnly(const char* name, bool readOnly) noexcept;
/// Removes a file, or a link itself, never a directory. A read-only file is made writable first and gets its
/// permissions back when it cannot be removed.
SystemError removeFile(const char* name) noexcept;
/// Fails with EEXIST if the target exists, even if it appears at the last moment.
SystemError renameFile(const char* from, const char* to) noexcept;
/// Creates a file that did not exist, for this user alone, and opens it for reading and writing bytes.
/// Children do not inherit the descriptor. Fails with EEXIST for any entry of that name, including a dangling
/// link.
SystemError createExclusively(const char* name, int& descriptor) noexcept;

/// Writes the current directory in backslash style with its drive, NUL-terminated, without a final separator
/// unless it is the root. Fails with ERANGE when it does not fit, EINVAL when it cannot be spelled in that
/// style.
SystemError currentDirectory(char* out, std::size_t capacity) noexcept;
/// Returns the directory for scratch files that the system knows beyond TMP and TEMP; never null.
const char* fallbackTmpDirectory() noexcept;
/// Returns the drive of absolute names in slash style: "C:" where such names are the system's own, else "".
const char* driveOfSlashNames() noexcept;

}  // namespace vel::platform
