// Entries of the file system by names of any length: status, creating and removing. Names are UTF-8 on
// Windows and the system's bytes elsewhere, NUL-terminated, and mean what they mean to the system: unlike the
// functions of files.h, these translate nothing on POSIX systems. Failures are the system's own numbers.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>

#include "platform/file_identity.h"
#include "platform/system_error.h"

namespace vel::platform {

enum class EntryKind : std::uint32_t { Other, File, Directory, Link };
/// Whether a link in the last component stands for what it leads to, or for itself.
enum class LinkMeans { Target, Itself };

inline constexpr std::int64_t kUnknownTime = std::numeric_limits<std::int64_t>::min();

/// Times are nanoseconds since 1970; kUnknownTime where the file system does not keep one.
struct FullStatus {
  EntryKind kind;
  std::uint32_t ownerPermissions;  ///< 4 to read, 2 to write, 1 to execute
  std::uint64_t sizeInBytes;       ///< 0 for directories
  std::uint64_t linkCount;
  std::int64_t modified, accessed, changed, created;
  FileIdentity identity;
};

/// The characters that separate the components of a name; the first is the preferred one.
const char* nameSeparators() noexcept;
/// Whether the system treats characters of a name as equal that differ only in case.
bool ignoresCaseOfNames() noexcept;
/// The form of a character under which names are compared; itself on systems that distinguish case.
char32_t foldedForNames(char32_t character) noexcept;

NativeError statusOfName(const char* name, LinkMeans links, FullStatus& status) noexcept;
/// Whether a link that is followed leads to an entry. A name whose parents do not exist does not exist.
NativeError nameExists(const char* name, bool& exists) noexcept;
NativeError createDirectoryNamed(const char* name) noexcept;
/// Creates a file or directory for this user alone. An existing entry, also a dangling link, is an error.
NativeError createPrivately(const char* name, bool isDirectory) noexcept;
/// Removes a file, read-only or not, a link itself, or an empty directory.
NativeError removeNamed(const char* name) noexcept;
/// Renames. Without `replaces`, an existing target is an error. `from` and `to` may differ in case only.
NativeError renameNamed(const char* from, const char* to, bool replaces) noexcept;
/// Gives a directory the permissions and times of another one.
NativeError copyRightsNamed(const char* from, const char* to) noexcept;
/// Makes a link like the link `from`. Without `replaces`, an existing target is an error.
NativeError copyLink(const char* from, const char* to, bool replaces) noexcept;

/// Writes the directory for temporary files, NUL-terminated; the result fits if it is less than `capacity`.
/// Returns its length, 0 if the system has none.
std::size_t temporaryDirectory(char* out, std::size_t capacity) noexcept;
/// A number that nobody can predict.
NativeError unpredictableNumber(std::uint64_t& number) noexcept;

}  // namespace vel::platform
