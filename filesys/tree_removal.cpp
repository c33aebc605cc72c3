// Every level works through its open directory and not by path: a directory that is exchanged for a
// link meanwhile leads nowhere else, and paths of any length can be removed.
#include "filesys/tree_removal.h"

#include <cerrno>

#include "filesys/directory_entry.h"
#include "platform/platform.h"

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

bool isDirectory(const platform::DirectoryEntry& entry) noexcept {
  return (entry.attributes & platform::kAttributeDirectory) != 0;
}

bool removeEntriesOf(platform::DirectoryHandle& directory, int depth) noexcept;

bool emptyEntry(const platform::DirectoryHandle& parent, platform::DirectoryEntry& entry,
                int depth) noexcept {
  OpenDirectory directory;
  const platform::SystemError error = platform::openEntry(parent, entry, directory.handle());
  if (error == 0) return removeEntriesOf(directory.handle(), depth);
  // By now something else has its name, perhaps a link: that is removed itself.
  if (error == ENOTDIR) entry.attributes &= ~platform::kAttributeDirectory;
  return error == ENOTDIR;
}

bool removeWithContents(const platform::DirectoryHandle& parent, platform::DirectoryEntry& entry,
                        int depth) noexcept {
  if (isDirectory(entry) && !isSubDirectoryName(entry.name)) return true;
  if (isDirectory(entry) && !emptyEntry(parent, entry, depth)) return false;
  return platform::removeEntry(parent, entry) == 0;
}

bool removeEntriesOf(platform::DirectoryHandle& directory, int depth) noexcept {
  if (depth > kMaxDepth) return false;
  platform::DirectoryEntry entry;
  while (platform::nextEntry(directory, entry) == platform::WalkStep::Entry)
    if (!removeWithContents(directory, entry, depth + 1)) return false;
  return true;
}

}  // namespace

void removeContents(const char* directory) noexcept {
  OpenDirectory opened;
  if (platform::openDirectory(directory, platform::DirectoryLink::Refuse, opened.handle()) == 0)
    static_cast<void>(removeEntriesOf(opened.handle(), 0));
}

}  // namespace vel::filesys
