// Every level works through its open directory and not by path: a directory that is exchanged for a
// link meanwhile leads nowhere else, and paths of any length can be removed.
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

// Each level holds a descriptor and about 1 KB of the stack.
constexpr int kMaxDepth = 256;

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

/// The roots that a name leads below. Spellings of a root have no end, so what was opened is compared, and
/// at every level: another name of a root can lie anywhere.
class ProtectedRoots {
 public:
  explicit ProtectedRoots(const char* directory) noexcept {
    platform::FileIdentity identity;
    // Who was allowed to open a directory may look at it, too: then it is not this one.
    const platform::SystemError error = platform::identityOfRoot(directory, identity);
    error == 0 ? add(identity) : requireKnown(error == EACCES);
    addShareOf(VelClPathProperty(directory));
  }

  /// True, too, where that is not known.
  bool contains(const platform::DirectoryHandle& directory) const noexcept {
    platform::FileIdentity identity;
    const auto* const end = identities_ + count_;
    return !areKnown_ || platform::identityOf(directory, identity) != 0 ||
           std::find(identities_, end, identity) != end;
  }

 private:
  void add(const platform::FileIdentity& identity) noexcept { identities_[count_++] = identity; }
  void requireKnown(bool isKnown) noexcept { areKnown_ = areKnown_ && isKnown; }

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

bool emptyEntry(const platform::DirectoryHandle& parent, platform::DirectoryEntry& entry,
                const ProtectedRoots& roots, int depth) noexcept {
  OpenDirectory directory;
  const platform::SystemError error = platform::openEntry(parent, entry, directory.handle());
  if (error == 0) return removeEntriesOf(directory.handle(), roots, depth);
  // By now something else has its name, perhaps a link: that is removed itself.
  if (error == ENOTDIR) entry.attributes &= ~platform::kAttributeDirectory;
  return error == ENOTDIR;
}

bool removeWithContents(const platform::DirectoryHandle& parent, platform::DirectoryEntry& entry,
                        const ProtectedRoots& roots, int depth) noexcept {
  if (isDirectory(entry) && !isSubDirectoryName(entry.name)) return true;
  if (isDirectory(entry) && !emptyEntry(parent, entry, roots, depth)) return false;
  return platform::removeEntry(parent, entry) == 0;
}

bool removeEntriesOf(platform::DirectoryHandle& directory, const ProtectedRoots& roots, int depth) noexcept {
  if (depth > kMaxDepth || roots.contains(directory)) return false;
  platform::DirectoryEntry entry;
  platform::WalkStep step;
  // What a listing that failed has left out is told by the removal of the directory itself.
  while (platform::nextEntry(directory, entry, step) == 0 && step == platform::WalkStep::Entry)
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
