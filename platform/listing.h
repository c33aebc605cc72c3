// Reading directories that are open, and reaching their entries through them, so that replacing a path
// meanwhile leads nowhere else. Names of entries have any length. See named_files.h for names and errors.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "platform/directories.h"
#include "platform/file_identity.h"
#include "platform/named_files.h"
#include "platform/system_error.h"

namespace vel::platform {

/// A directory that is open for listing. It is large: allocate it in managed memory.
struct Listing {
  static constexpr std::size_t kBufferSize = 32768;

  // Not defaulted: that would clear the buffer.
  Listing() noexcept {}

  std::intptr_t handle = -1;
  std::size_t at = 0;    ///< the next entry in the buffer
  std::size_t size = 0;  ///< the bytes in the buffer
  alignas(8) char buffer[kBufferSize];
};

/// An entry of a directory. Its texts are valid until the next call for the same listing.
struct ListedEntry {
  EntryKind kind;
  /// The system's own spelling, for openListed and its like; a copy of it needs a NUL after it.
  std::string_view systemName;
};

/// The space for any name of an entry as UTF-8: Windows' names have up to 255 units.
inline constexpr std::size_t kEntryNameCapacity = 1024;
/// Returns a name as UTF-8, in `buffer` unless the system's spelling is that already. Null if the name is
/// not well-formed.
const char* shownName(std::string_view systemName, char (&buffer)[kEntryNameCapacity],
                      std::size_t& size) noexcept;

NativeError openListing(const char* name, DirectoryLink link, Listing& listing) noexcept;
/// Opens a directory within an open one. With Refuse, anything but a directory, a link for example, fails.
NativeError openListed(const Listing& parent, std::string_view systemName, DirectoryLink link,
                       Listing& listing) noexcept;
void closeListing(Listing& listing) noexcept;
/// Lists the entries but "." and "..". At the end sets `step` to End.
NativeError nextListed(Listing& listing, ListedEntry& entry, ListingStep& step) noexcept;

NativeError identityOfListing(const Listing& listing, FileIdentity& identity) noexcept;
/// Whether the directory is a root: that of the process, of a drive, or of a share. True if the system cannot
/// tell. `processRoot` is what identityOfProcessRoot has returned.
bool isRoot(const Listing& listing, const FileIdentity& processRoot) noexcept;
/// Zeros where that is no help, or if this process may not examine it: then it cannot be a directory that the
/// process opened.
FileIdentity identityOfProcessRoot() noexcept;
NativeError statusOfListed(const Listing& parent, std::string_view systemName, LinkMeans links,
                           FullStatus& status) noexcept;
/// Removes a file, read-only or not, a link itself, or with `isDirectory` an empty directory.
NativeError removeListed(const Listing& parent, std::string_view systemName, bool isDirectory) noexcept;

}  // namespace vel::platform
