// Directories: listing, creating, entering and removing them. Operations on entries go through the open
// directory, so that replacing its path meanwhile does not divert them.
#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/file_identity.h"
#include "platform/path_length.h"
#include "platform/system_error.h"

namespace vel::platform {

/// How to treat a link (on Windows also a junction) in the place of a directory.
enum class DirectoryLink { Follow, Refuse };

/// An open directory. Operations on its entries stay in it even if its path is renamed or replaced.
struct DirectoryHandle {
  void* system = nullptr;    ///< null when nothing is open
  std::uint32_t listed = 0;  ///< how many of "." and ".." were listed; used where the system may omit them
};

/// One directory entry, described alike on every system. A link is never a directory.
struct DirectoryEntry {
  static constexpr std::size_t kNameCapacity = kMaxPathLength + 1;
  /// A name of UTF-16 units, or of bytes, with its terminator.
  static constexpr std::size_t kSystemNameCapacity = 2 * kNameCapacity;

  std::uint32_t attributes;
  char name[kNameCapacity];  ///< NUL-terminated; at most kMaxPathLength bytes, longer names are cut
  /// The system's own spelling, NUL-terminated, for openSubdirectory and removeEntry.
  alignas(2) unsigned char systemName[kSystemNameCapacity];
};

/// Fails with ENOTDIR for everything but a directory, including a refused link.
SystemError openDirectory(const char* name, DirectoryLink link, DirectoryHandle& directory) noexcept;
void closeDirectory(DirectoryHandle& directory) noexcept;
/// The identity of the open directory itself, even if its path leads to another one meanwhile.
SystemError identityOf(const DirectoryHandle& directory, FileIdentity& identity) noexcept;
/// The identity of this process's root; on Windows of the root of the drive or share that the name leads to.
/// Fails with EACCES for a root that this process may not even look at.
SystemError identityOfRoot(const char* name, FileIdentity& identity) noexcept;

/// What nextEntry has found.
enum class ListingStep { Entry, End };
/// Reads the next entry; at the end sets `step` to End and leaves `entry` unchanged.
SystemError nextEntry(DirectoryHandle& directory, DirectoryEntry& entry, ListingStep& step) noexcept;
/// Opens a directory within a directory; never follows a link. Fails with ENOTDIR if the entry is not a
/// directory.
SystemError openSubdirectory(const DirectoryHandle& directory, const DirectoryEntry& entry,
                             DirectoryHandle& opened) noexcept;
/// Removes a file, a link itself, or, if the entry's attributes say so, an empty directory.
SystemError removeEntry(const DirectoryHandle& directory, const DirectoryEntry& entry) noexcept;

SystemError makeDirectory(const char* name) noexcept;
/// Removes an empty directory, or the link in its place.
SystemError removeDirectory(const char* name) noexcept;
SystemError changeDirectory(const char* name) noexcept;

}  // namespace vel::platform
