// Walks over trees of any depth. The path of an entry is put together only when it is asked for.
#include <cerrno>
#include <utility>

#include "filesys/name_filter.h"
#include "filesys/open_directories.h"
#include "filesys/path_argument.h"
#include "filesys/public_status.h"
#include "platform/listing.h"
#include "platform/named_files.h"
#include "vel_include/vel_files.h"

namespace platform = vel::platform;
using vel::filesys::statusOfCall;

struct VelStFileWalk {
 public:
  VelStFileWalk() noexcept = default;
  VelStFileWalk(const VelStFileWalk&) = delete;
  VelStFileWalk& operator=(const VelStFileWalk&) = delete;
  ~VelStFileWalk() { velStatusFree(failure_); }

  VelClStatus open(const vel::filesys::PathArgument& name, const VelStFileWalkOptions& options);
  bool next();
  /// Ends the walk with a last entry, for a failure that leaves no way to continue.
  bool endWith(VelStStatus* failure) noexcept {
    setFailure(failure);
    isEnded_ = true;
    return hasEntry_ = true;
  }

  void skip() noexcept { entersCurrent_ = false; }
  const VelStStatus* failure() const noexcept { return failure_; }
  std::string_view path();
  std::string_view name() const noexcept { return hasEntry_ ? name_ : std::string_view(); }
  platform::EntryKind kind() const noexcept { return kind_; }
  std::uint32_t depth() const noexcept { return hasEntry_ ? depth_ : 0; }
  VelClStatus status(platform::LinkMeans links, VelStFileStatus& status);

 private:
  enum class Step { Listed, Hidden, End };

  void setFailure(VelStStatus* failure) noexcept { velStatusFree(std::exchange(failure_, failure)); }
  Step step();
  Step list(const platform::ListedEntry& entry);
  Step enterCurrent();
  Step leave();
  Step failed(platform::NativeError error);
  Step directoryFailed(platform::NativeError error);
  bool entersEntry() const noexcept {
    return kind_ == platform::EntryKind::Directory && (maxDepth_ == 0 || depth_ < maxDepth_);
  }

  vel::filesys::OpenDirectories directories_;
  vel::filesys::NameFilter filter_;
  bool followsLinks_ = false;
  std::uint32_t maxDepth_ = 0;

  vel::String path_;                    ///< of the present directory with a separator, then of the entry
  vel::Vector<std::size_t> pathSizes_;  ///< of each open directory, with the separator
  bool hasPath_ = false;                ///< whether path_ ends in the entry's name
  bool isOfDirectory_ = false;          ///< the entry is the present directory itself, which failed

  bool hasEntry_ = false, isEnded_ = true, entersCurrent_ = false;
  std::string_view systemName_, name_;
  platform::EntryKind kind_ = platform::EntryKind::Other;
  std::uint32_t depth_ = 0;
  VelStStatus* failure_ = nullptr;
  char nameBuffer_[platform::kEntryNameCapacity];
};

VelClStatus VelStFileWalk::open(const vel::filesys::PathArgument& name, const VelStFileWalkOptions& options) {
  if (options.filter != nullptr) filter_ = vel::filesys::NameFilter({options.filter, options.filterSize});
  followsLinks_ = options.followsLinks;
  maxDepth_ = options.maxDepth;
  const auto error = directories_.openTop(name.get(), platform::DirectoryLink::Follow);
  if (error != 0) return statusOfCall(FILE_COULD_NOT_READ, error, name.view());
  if (!followsLinks_) directories_.treatLinksBelow(platform::DirectoryLink::Refuse);
  path_ = name.view();
  vel::filesys::endWithSeparator(path_);
  pathSizes_.push_back(path_.size());
  isEnded_ = false;
  return {};
}

bool VelStFileWalk::next() {
  hasEntry_ = false;
  if (isEnded_) return false;
  if (failure_ != nullptr) setFailure(nullptr);
  Step found = entersCurrent_ ? enterCurrent() : step();
  while (found == Step::Hidden) found = entersCurrent_ ? enterCurrent() : step();
  hasEntry_ = found == Step::Listed;
  // Windows keeps a directory that is removed until it is closed.
  if (!hasEntry_) directories_.closeAll();
  isEnded_ = !hasEntry_;
  return hasEntry_;
}

VelStFileWalk::Step VelStFileWalk::step() {
  if (hasPath_) {
    path_.resize(pathSizes_.back());
    hasPath_ = false;
  }
  isOfDirectory_ = false;
  platform::ListedEntry entry;
  platform::ListingStep listed;
  if (const auto error = directories_.next(entry, listed); error != 0) return directoryFailed(error);
  return listed == platform::ListingStep::Entry ? list(entry) : leave();
}

VelStFileWalk::Step VelStFileWalk::list(const platform::ListedEntry& entry) {
  systemName_ = entry.systemName;
  kind_ = entry.kind;
  depth_ = static_cast<std::uint32_t>(directories_.depth() + 1);
  std::size_t size = 0;
  const char* const shown = platform::shownName(systemName_, nameBuffer_, size);
  name_ = shown != nullptr ? std::string_view(shown, size) : std::string_view("?");
  platform::FullStatus target;
  // A link that leads nowhere stays a link.
  if (kind_ == platform::EntryKind::Link && followsLinks_ &&
      platform::statusOfListed(directories_.current(), systemName_, platform::LinkMeans::Target, target) == 0)
    kind_ = target.kind;
  if (shown == nullptr) {
    setFailure(VelClStatus(FILE_COULD_NOT_READ, VelEnErrorClass::IO_INVALID_NAME, 0, path()).release());
    return Step::Listed;
  }
  entersCurrent_ = entersEntry();
  return filter_.matches(name_) ? Step::Listed : Step::Hidden;
}

VelStFileWalk::Step VelStFileWalk::enterCurrent() {
  entersCurrent_ = false;
  static_cast<void>(path());
  if (const auto error = directories_.enter(systemName_); error != 0) return failed(error);
  if (followsLinks_ && directories_.isLoop()) {
    static_cast<void>(directories_.leave());
    setFailure(VelClStatus(FILE_COULD_NOT_READ, VelEnErrorClass::INCONSISTENT_SITUATION, 0, path_).release());
    return Step::Listed;
  }
  vel::filesys::endWithSeparator(path_);
  pathSizes_.push_back(path_.size());
  hasPath_ = false;
  return Step::Hidden;
}

VelStFileWalk::Step VelStFileWalk::leave() {
  if (directories_.depth() == 0) return Step::End;
  pathSizes_.pop_back();
  path_.resize(pathSizes_.back());
  const auto error = directories_.leave();
  return error == 0 ? Step::Hidden : directoryFailed(error);
}

/// The present entry, which was listed before, could not be entered.
VelStFileWalk::Step VelStFileWalk::failed(platform::NativeError error) {
  setFailure(statusOfCall(FILE_COULD_NOT_READ, error, path()).release());
  return Step::Listed;
}

/// The listing of the present directory broke off: it is an entry once more.
VelStFileWalk::Step VelStFileWalk::directoryFailed(platform::NativeError error) {
  isOfDirectory_ = hasPath_ = true;
  kind_ = platform::EntryKind::Directory;
  depth_ = static_cast<std::uint32_t>(directories_.depth());
  if (path_.size() > 1) path_.pop_back();
  name_ = {};
  directories_.endListing();
  return failed(error);
}

std::string_view VelStFileWalk::path() {
  if (!hasEntry_ && !hasPath_ && name_.empty()) return {};
  if (!hasPath_) path_ += name_;
  hasPath_ = true;
  return path_;
}

VelClStatus VelStFileWalk::status(platform::LinkMeans links, VelStFileStatus& status) {
  platform::FullStatus found;
  const auto error = isOfDirectory_
                         ? platform::statusOfName(path_.c_str(), links, found)
                         : platform::statusOfListed(directories_.current(), systemName_, links, found);
  return error == 0 ? vel::filesys::giveStatus(0, found, {}, status)
                    : vel::filesys::giveStatus(error, found, path(), status);
}

namespace {

const char* give(std::string_view text, size_t* size) noexcept {
  if (size != nullptr) *size = text.size();
  return text.data() != nullptr ? text.data() : "";
}

}  // namespace

VelStStatus* velFileWalkOpen(const char* path, size_t pathSize, const VelStFileWalkOptions* options,
                             VelStFileWalk** walk) {
  *walk = nullptr;
  return vel::filesys::withPath(path, pathSize, [&](const vel::filesys::PathArgument& name) {
    vel::OwnedObject<VelStFileWalk> opened(vel::create<VelStFileWalk>());
    VelClStatus status = opened->open(name, options != nullptr ? *options : VelStFileWalkOptions{});
    if (status.isOk()) *walk = opened.release();
    return status;
  });
}

void velFileWalkClose(VelStFileWalk* walk) {
  vel::destroy(walk);
}

bool velFileWalkNext(VelStFileWalk* walk) {
  if (walk == nullptr) return false;
  bool isListed = false;
  VelStStatus* const failure = vel::plainStatus([&]() -> VelClStatus {
    isListed = walk->next();
    return {};
  });
  return failure == nullptr ? isListed : walk->endWith(failure);
}

void velFileWalkSkip(VelStFileWalk* walk) {
  if (walk != nullptr) walk->skip();
}

const VelStStatus* velFileWalkGetFailure(const VelStFileWalk* walk) {
  return walk != nullptr ? walk->failure() : nullptr;
}

const char* velFileWalkGetPath(VelStFileWalk* walk, size_t* size) {
  std::string_view path;
  // Without memory, the result is "".
  if (walk != nullptr)
    velStatusFree(vel::plainStatus([&]() -> VelClStatus {
      path = walk->path();
      return {};
    }));
  return give(path, size);
}

const char* velFileWalkGetName(VelStFileWalk* walk, size_t* size) {
  return give(walk != nullptr ? walk->name() : std::string_view(), size);
}

enum VelEnFileKind velFileWalkGetKind(const VelStFileWalk* walk) {
  return walk != nullptr ? vel::filesys::publicKind(walk->kind()) : VEL_FILE_KIND_OTHER;
}

uint32_t velFileWalkGetDepth(const VelStFileWalk* walk) {
  return walk != nullptr ? walk->depth() : 0;
}

VelStStatus* velFileWalkGetStatus(VelStFileWalk* walk, enum VelEnLinks links, VelStFileStatus* status) {
  *status = {};
  return vel::plainStatus([&]() -> VelClStatus {
    if (walk == nullptr || walk->depth() == 0) return {FILE_COULD_NOT_QUERY, VelEnErrorClass::LOGIC};
    return walk->status(vel::filesys::meaningOf(links), *status);
  });
}
