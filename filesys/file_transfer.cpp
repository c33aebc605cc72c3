// Copies and moves. What is moved to another file system is copied beside its new name, stored, renamed, and
// then removed from where it was.
#include <cerrno>

#include "filesys/directory_move.h"
#include "filesys/path_argument.h"
#include "platform/file_contents.h"
#include "platform/named_files.h"
#include "vel_include/vel_files.h"

namespace {

namespace platform = vel::platform;
using vel::filesys::PathArgument;
using vel::filesys::statusOfCall;

/// Whether the target exists and was not modified before the source: with OLDER, nothing is to be done.
bool isUpToDate(const char* from, const char* to, VelEnOverwrite overwrite,
                platform::LinkMeans links) noexcept {
  platform::FullStatus source, target;
  return overwrite == VEL_OVERWRITE_OLDER && platform::statusOfName(from, links, source) == 0 &&
         platform::statusOfName(to, links, target) == 0 && target.modified >= source.modified;
}

VelClStatus copyFile(const PathArgument& from, const PathArgument& to, unsigned long id,
                     const platform::CopyOptions& options) {
  platform::CopySide side = platform::CopySide::Source;
  const auto error = platform::copyContents(from.get(), to.get(), options, side);
  return statusOfCall(id, error, (side == platform::CopySide::Source ? from : to).view());
}

/// Moves what a rename cannot.
VelClStatus moveByCopy(const PathArgument& from, const PathArgument& to, bool replaces,
                       platform::NativeError otherFileSystem) {
  platform::FullStatus status;
  const auto error = platform::statusOfName(from.get(), platform::LinkMeans::Itself, status);
  if (error != 0) return statusOfCall(FILE_COULD_NOT_MOVE, error, from.view());
  VelClStatus moved;
  if (status.kind == platform::EntryKind::File)
    moved = copyFile(from, to, FILE_COULD_NOT_MOVE, {replaces, true, true});
  else if (status.kind == platform::EntryKind::Link)
    moved = statusOfCall(FILE_COULD_NOT_MOVE, platform::copyLink(from.get(), to.get(), replaces), to.view());
  else if (status.kind == platform::EntryKind::Directory)
    return vel::filesys::moveDirectoryByCopy(from, to);
  else
    return statusOfCall(FILE_COULD_NOT_MOVE, otherFileSystem, to.view());
  if (!moved.isOk()) return moved;
  return statusOfCall(FILE_COULD_NOT_MOVE, platform::removeNamed(from.get()), from.view());
}

VelClStatus move(const PathArgument& from, const PathArgument& to, VelEnOverwrite overwrite) {
  const bool replaces = overwrite != VEL_OVERWRITE_NEVER;
  if (isUpToDate(from.get(), to.get(), overwrite, platform::LinkMeans::Itself)) return {};
  const auto error = platform::renameNamed(from.get(), to.get(), replaces);
  if (platform::isOtherFileSystem(error)) return moveByCopy(from, to, replaces, error);
  if (error == 0) return {};
  // The name that the failure is about: only a source can be missing, unless it is there.
  platform::FullStatus status;
  const bool isThere = platform::statusOfName(from.get(), platform::LinkMeans::Itself, status) == 0;
  return statusOfCall(FILE_COULD_NOT_MOVE, error, (isThere ? to : from).view());
}

}  // namespace

VelStStatus* velFileCopy(const char* from, size_t fromSize, const char* to, size_t toSize,
                         enum VelEnOverwrite overwrite, bool keepsRights) {
  return vel::filesys::withPaths(
      from, fromSize, to, toSize, [&](const PathArgument& source, const PathArgument& target) -> VelClStatus {
        if (isUpToDate(source.get(), target.get(), overwrite, platform::LinkMeans::Target)) return {};
        return copyFile(source, target, FILE_COULD_NOT_COPY,
                        {overwrite != VEL_OVERWRITE_NEVER, keepsRights, false});
      });
}

VelStStatus* velFileMove(const char* from, size_t fromSize, const char* to, size_t toSize,
                         enum VelEnOverwrite overwrite) {
  return vel::filesys::withPaths(from, fromSize, to, toSize,
                                 [&](const PathArgument& source, const PathArgument& target) {
                                   return move(source, target, overwrite);
                                 });
}
