// Removes trees of any depth through their open directories: a path that is exchanged meanwhile leads the
// removal nowhere else.
#include <cerrno>

#include "filesys/open_directories.h"
#include "filesys/path_argument.h"
#include "platform/listing.h"
#include "platform/named_files.h"
#include "vel_include/vel_files.h"

namespace {

namespace platform = vel::platform;
using vel::filesys::PathArgument;

/// Somebody else removed the entry first.
platform::NativeError unlessGone(platform::NativeError error) noexcept {
  return platform::preciseErrno(error) == ENOENT ? 0 : error;
}

class TreeRemover {
 public:
  explicit TreeRemover(const PathArgument& name) noexcept : name_(name) {}

  /// Removes what is in the directory.
  VelClStatus removeContents() {
    platform::NativeError error = directories_.openTop(name_.get(), platform::DirectoryLink::Refuse);
    if (error != 0) return failure(error);
    if (isAtRoot()) return isRoot();
    for (;;) {
      platform::ListedEntry entry;
      platform::ListingStep step;
      error = directories_.next(entry, step);
      if (error != 0) return failure(error);
      if (step == platform::ListingStep::Entry) {
        if (VelClStatus status = removeOrEnter(entry); !status.isOk()) return status;
      } else {
        if (directories_.depth() == 0) return {};
        if (error = removeEmptied(); error != 0) return failure(error);
      }
    }
  }

 private:
  VelClStatus removeOrEnter(const platform::ListedEntry& entry) {
    platform::NativeError error = 0;
    if (entry.kind == platform::EntryKind::Directory) {
      error = directories_.enter(entry.systemName);
      if (error == 0) return isAtRoot() ? isRoot() : VelClStatus();
      const platform::SystemError kind = platform::preciseErrno(error);
      if (kind == ENOENT) return {};
      // It was exchanged since it was listed, perhaps for a link, which is removed itself.
      if (kind != ENOTDIR && kind != ELOOP) return failure(error, entry.systemName);
    }
    error = unlessGone(platform::removeListed(directories_.current(), entry.systemName, false));
    return error == 0 ? VelClStatus() : failure(error, entry.systemName);
  }

  /// Leaves the directory, which is empty now, and removes it.
  platform::NativeError removeEmptied() {
    const vel::String name(directories_.nameAt(directories_.depth()));
    const platform::NativeError error = directories_.leave();
    if (error != 0) return error;
    return unlessGone(platform::removeListed(directories_.current(), name, true));
  }

  bool isAtRoot() const noexcept { return platform::isRoot(directories_.current(), processRoot_); }
  VelClStatus isRoot() const {
    return {FILE_COULD_NOT_REMOVE, VelEnErrorClass::IO_PERMISSION_DENIED, 0, path({})};
  }
  VelClStatus failure(platform::NativeError error, std::string_view entry = {}) const {
    return vel::filesys::statusOfCall(FILE_COULD_NOT_REMOVE, error, path(entry));
  }

  /// The path of an entry of the present directory, or with "" of the directory itself.
  vel::String path(std::string_view entry) const {
    vel::String text(name_.view());
    for (std::size_t depth = 1; directories_.isOpen() && depth <= directories_.depth(); ++depth)
      addComponent(text, directories_.nameAt(depth));
    if (!entry.empty()) addComponent(text, entry);
    return text;
  }

  static void addComponent(vel::String& path, std::string_view systemName) {
    char buffer[platform::kEntryNameCapacity];
    std::size_t size = 0;
    const char* const shown = platform::shownName(systemName, buffer, size);
    vel::filesys::endWithSeparator(path);
    path.append(shown != nullptr ? shown : "?", shown != nullptr ? size : 1);
  }

  const PathArgument& name_;
  const platform::FileIdentity processRoot_ = platform::identityOfProcessRoot();
  vel::filesys::OpenDirectories directories_;
};

VelClStatus removeTree(const PathArgument& name) {
  platform::FullStatus status;
  platform::NativeError error = platform::statusOfName(name.get(), platform::LinkMeans::Itself, status);
  if (error == 0 && status.kind == platform::EntryKind::Directory)
    if (VelClStatus removed = TreeRemover(name).removeContents(); !removed.isOk()) return removed;
  if (error == 0) error = platform::removeNamed(name.get());
  return vel::filesys::statusOfCall(FILE_COULD_NOT_REMOVE, error, name.view());
}

}  // namespace

VelStStatus* velTreeRemove(const char* path, size_t pathSize) {
  return vel::filesys::withPath(path, pathSize, removeTree);
}
