// Moves a directory to another file system by copying it.
#include "filesys/directory_move.h"

#include <cerrno>

#include "filesys/random_name.h"
#include "foundation/allocator.h"
#include "platform/file_contents.h"
#include "platform/named_files.h"
#include "vel_include/vel_files.h"

namespace vel::filesys {

namespace {

VelClStatus moveFailure(platform::NativeError error, std::string_view name) {
  return statusOfCall(FILE_COULD_NOT_MOVE, error, name);
}

/// Copies what is in a directory.
class TreeCopy {
 public:
  TreeCopy(std::string_view from, std::string_view to) : from_(from), to_(to) {
    endWithSeparator(from_);
    endWithSeparator(to_);
  }

  VelClStatus run() {
    VelClFileWalk walk;
    if (VelClStatus status = walk.open(from_); !status.isOk()) return status;
    while (walk.next()) {
      if (!walk.isOk()) return walk.getFailure();
      if (VelClStatus status = copyEntry(walk); !status.isOk()) return status;
    }
    return keepRightsOfDirectories();
  }

 private:
  VelClStatus copyEntry(const VelClFileWalk& walk) {
    const String source(walk.getPath());
    const String target = targetOf(source);
    switch (walk.getKind()) {
      case VEL_FILE_KIND_DIRECTORY:
        directories_.push_back(source);
        return moveFailure(platform::createDirectoryNamed(target.c_str()), target);
      case VEL_FILE_KIND_LINK:
        return moveFailure(platform::copyLink(source.c_str(), target.c_str(), false), target);
      case VEL_FILE_KIND_FILE: {
        platform::CopySide side = platform::CopySide::Source;
        const auto error = platform::copyContents(source.c_str(), target.c_str(), {false, true, true}, side);
        return moveFailure(error, side == platform::CopySide::Source ? source : target);
      }
      case VEL_FILE_KIND_OTHER:
        break;
    }
    return {FILE_COULD_NOT_MOVE, VelEnErrorClass::FUNCTION_NOT_SUPPORTED, 0, source};
  }

  /// Last, because what is written into a directory changes its time, and it may be read-only. Subdirectories
  /// first.
  VelClStatus keepRightsOfDirectories() {
    for (; !directories_.empty(); directories_.pop_back()) {
      const String target = targetOf(directories_.back());
      const auto error = platform::copyRightsNamed(directories_.back().c_str(), target.c_str());
      if (error != 0) return moveFailure(error, target);
    }
    return moveFailure(platform::copyRightsNamed(from_.c_str(), to_.c_str()), to_);
  }

  String targetOf(const String& source) const { return to_ + source.substr(from_.size()); }

  String from_, to_;
  Vector<String> directories_;
};

VelClStatus copyAndRename(const PathArgument& from, const PathArgument& to, const String& temporary) {
  VelClStatus status = TreeCopy(from.view(), temporary).run();
  if (status.isOk())
    status = moveFailure(platform::renameNamed(temporary.c_str(), to.get(), false), to.view());
  return status;
}

}  // namespace

VelClStatus moveDirectoryByCopy(const PathArgument& from, const PathArgument& to) {
  platform::FullStatus existing;
  if (platform::statusOfName(to.get(), platform::LinkMeans::Itself, existing) == 0)
    return {FILE_COULD_NOT_MOVE, VelEnErrorClass::IO_ALREADY_IN_USE, 0, to.view()};
  std::string_view beside = to.view();
  while (beside.size() > 1 && isSeparator(beside.back())) beside.remove_suffix(1);
  String temporary(beside);
  if (!appendRandomCharacters(temporary))
    return {FILE_COULD_NOT_MOVE, VelEnErrorClass::RESOURCE_EXHAUSTED, 0, to.view()};
  const auto error = platform::createPrivately(temporary.c_str(), true);
  if (error != 0) return moveFailure(error, to.view());
  VelClStatus status = copyAndRename(from, to, temporary);
  if (!status.isOk()) {
    static_cast<void>(velTreeRemove(temporary).isOk());
    return status;
  }
  return velTreeRemove(from.view());
}

}  // namespace vel::filesys
