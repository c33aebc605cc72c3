// Removes the contents of a directory, recursively. Removing the directory itself is directory.cpp's work.
//
// Every level works through its open directory and not by path. If someone exchanges a directory for a link
// while the removal runs, a path would lead to the link's target, whose contents would be lost; an open
// directory stays the same. Paths of any length can be removed for the same reason.
#include "filesys/tree_removal.h"

#include <algorithm>
#include <cerrno>

#include "filesys/directory_entry.h"
#include "filesys/path_text.h"
#include "platform/directories.h"
#include "platform/file_identity.h"
#include "platform/files.h"
#include "platform/system_error.h"

namespace vel::filesys {

namespace {

// Each level holds a descriptor and about 1 KB of the stack, so the depth must be limited; 256 levels stay
// below the usual limits of both.
constexpr int kMaxDepth = 256;

// Closes the directory on every path out of a level.
class OpenDirectory {
 public:
  OpenDirectory() = default;
  OpenDirectory(const OpenDirectory&) = delete;
  OpenDirectory& operator=(const OpenDirectory&) = delete;
  ~OpenDirectory() { platform::closeDirectory(handle_); }

  platform::DirectoryHandle& handle() noexcept { return handle_; }

 private:
  platform::DirectoryHandle handle_;
};

/// The roots whose contents must not be removed: that of the process or drive, and that of the share in the
/// name. A root has any number of spellings ("C:\\.", mount points, shares), so the identities of open
/// directories are compared instead of names, and at every level, because a root can be mounted anywhere.
class ProtectedRoots {
 public:
  explicit ProtectedRoots(const char* directory) noexcept {
    platform::FileIdentity identity;
    // A root that this process may not examine cannot be one of the directories that it opened, so there is
    // nothing to protect. Any other failure leaves the root unknown.
    const platform::SystemError error = platform::identityOfRoot(directory, identity);
    error == 0 ? add(identity) : requireKnown(error == EACCES);
    addShareOf(VelClPathProperty(directory));
  }

  /// Whether the directory is one of the roots; true as well if that cannot be determined, since a removal
  /// that stops too early loses nothing.
  bool contains(const platform::DirectoryHandle& directory) const noexcept {
    platform::FileIdentity identity;
    const auto* const end = identities_ + count_;
    return !areKnown_ || platform::identityOf(directory, identity) != 0 ||
           std::find(identities_, end, identity) != end;
  }

 private:
  void add(const platform::FileIdentity& identity) noexcept { identities_[count_++] = identity; }
  /// Once a root is unknown, every directory counts as one.
  void requireKnown(bool isKnown) noexcept { areKnown_ = areKnown_ && isKnown; }

  /// Adds the root of the share if the name has one. A share that does not exist needs no protection.
  void addShareOf(const VelClPathProperty& name) noexcept {
    if (!name.isUNC()) return;
    PathText<> share;
    share.append(name.getAsCString(), static_cast<std::size_t>(name.getPtrToPath() - name.getAsCString()));
    OpenDirectory opened;
    platform::FileIdentity identity;
    platform::SystemError error =
        platform::openDirectory(share.text(), platform::DirectoryLink::Follow, opened.handle());
    if (error == 0) error = platform::identityOf(opened.handle(), identity);
    error == 0 ? add(identity) : requireKnown(error == EACCES || error == ENOENT || error == ENOTDIR);
  }

  platform::FileIdentity identities_[2];
  int count_ = 0;
  bool areKnown_ = true;
};

bool isDirectory(const platform::DirectoryEntry& entry) noexcept {
  return (entry.attributes & platform::kAttributeDirectory) != 0;
}

bool removeEntriesOf(platform::DirectoryHandle& directory, const ProtectedRoots& roots, int depth) noexcept;

// Empties a directory within `parent`. Returns whether the entry can be removed now.
bool emptyEntry(const platform::DirectoryHandle& parent, platform::DirectoryEntry& entry,
                const ProtectedRoots& roots, int depth) noexcept {
  OpenDirectory directory;
  const platform::SystemError error = platform::openSubdirectory(parent, entry, directory.handle());
  if (error == 0) return removeEntriesOf(directory.handle(), roots, depth);
  // The entry was replaced since it was listed, perhaps by a link, which is removed itself. Without the
  // attribute it is removed as a file.
  if (error == ENOTDIR) entry.attributes &= ~platform::kAttributeDirectory;
  return error == ENOTDIR;
}

// Removes one entry. Directories that isSubDirectoryName rejects, "." and ".." among them, are skipped.
bool removeWithContents(const platform::DirectoryHandle& parent, platform::DirectoryEntry& entry,
                        const ProtectedRoots& roots, int depth) noexcept {
  if (isDirectory(entry) && !isSubDirectoryName(entry.name)) return true;
  if (isDirectory(entry) && !emptyEntry(parent, entry, roots, depth)) return false;
  return platform::removeEntry(parent, entry) == 0;
}

bool removeEntriesOf(platform::DirectoryHandle& directory, const ProtectedRoots& roots, int depth) noexcept {
  if (depth > kMaxDepth || roots.contains(directory)) return false;
  platform::DirectoryEntry entry;
  platform::ListingStep step;
  // A failure of the listing is not reported here: if it left entries out, removing the directory fails.
  while (platform::nextEntry(directory, entry, step) == 0 && step == platform::ListingStep::Entry)
    if (!removeWithContents(directory, entry, roots, depth + 1)) return false;
  return true;
}

}  // namespace

void removeContents(const char* directory) noexcept {
  OpenDirectory opened;
  if (platform::openDirectory(directory, platform::DirectoryLink::Refuse, opened.handle()) == 0)
    static_cast<void>(removeEntriesOf(opened.handle(), ProtectedRoots(directory), 0));
}

}  // namespace vel::filesys
