// Directories: listing, creating, entering and removing them. Operations on entries go through the open
// directory, so that nobody who swaps names meanwhile can divert them.
#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/file_identity.h"
#include "platform/path_length.h"
#include "platform/system_error.h"

namespace vel::platform {

/// How to treat a link (on Windows also a junction) in the place of a directory.
enum class DirectoryLink { Follow, Refuse };

/// An open directory: its listing, and the place that operations on its entries start from, wherever its path
/// leads by then.
struct DirectoryHandle {
  void* system = nullptr;    ///< null when nothing is open
  std::uint32_t listed = 0;  ///< how many of "." and ".." were listed, where the system need not list them
};

/// One directory entry, described alike on every system. A link is never a directory.
struct DirectoryEntry {
  static constexpr std::size_t kNameCapacity = kMaxPathLength + 1;
  /// A name of UTF-16 units, or of bytes, with its terminator.
  static constexpr std::size_t kSystemNameCapacity = 2 * kNameCapacity;

  std::uint32_t attributes;
  char name[kNameCapacity];  ///< cut to kMaxPathLength characters, NUL-terminated
  /// The system's own spelling, NUL-terminated, for openEntry and removeEntry.
  alignas(2) unsigned char systemName[kSystemNameCapacity];
};

/// Fails with ENOTDIR for everything but a directory, including a refused link.
SystemError openDirectory(const char* name, DirectoryLink link, DirectoryHandle& directory) noexcept;
void closeDirectory(DirectoryHandle& directory) noexcept;
/// The identity of the directory that was opened, wherever its name leads by now.
SystemError identityOf(const DirectoryHandle& directory, FileIdentity& identity) noexcept;
/// The identity of this process's root; on Windows of the root of the drive or share that the name leads to.
/// Fails with EACCES for a root that this process may not even look at.
SystemError identityOfRoot(const char* name, FileIdentity& identity) noexcept;

enum class WalkStep { Entry, End };
/// Moves to the next entry, or tells that there are no more.
SystemError nextEntry(DirectoryHandle& directory, DirectoryEntry& entry, WalkStep& step) noexcept;
/// Opens a directory within a directory; never follows a link. Fails with ENOTDIR as above.
SystemError openEntry(const DirectoryHandle& directory, const DirectoryEntry& entry,
                      DirectoryHandle& opened) noexcept;
/// Removes a file, a link itself, or, if the entry's attributes say so, an empty directory.
SystemError removeEntry(const DirectoryHandle& directory, const DirectoryEntry& entry) noexcept;

SystemError makeDirectory(const char* name) noexcept;
/// Removes an empty directory, or the link in its place.
SystemError removeDirectory(const char* name) noexcept;
SystemError changeDirectory(const char* name) noexcept;

}  // namespace vel::platform
