// Reads the status by statx, which gives the time of creation, too.
#include "platform/posix/file_status.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>

#include <cerrno>

#include "platform/posix/nanoseconds.h"

namespace vel::platform {

namespace {

EntryKind kindOfMode(unsigned mode) noexcept {
  if (S_ISREG(mode)) return EntryKind::File;
  if (S_ISDIR(mode)) return EntryKind::Directory;
  return S_ISLNK(mode) ? EntryKind::Link : EntryKind::Other;
}

std::int64_t timeOf(const struct statx& found, unsigned mask, const statx_timestamp& time) noexcept {
  return (found.stx_mask & mask) != 0 ? time.tv_sec * kNanosecondsPerSecond + time.tv_nsec : kUnknownTime;
}

}  // namespace

SystemError statusAt(int directory, const char* name, LinkMeans links, FullStatus& status) noexcept {
  const int flags = links == LinkMeans::Itself ? AT_SYMLINK_NOFOLLOW : 0;
  struct statx found;
  if (statx(directory, name, flags, STATX_BASIC_STATS | STATX_BTIME, &found) != 0) return errno;
  status.kind = kindOfMode(found.stx_mode);
  status.ownerPermissions = (found.stx_mode >> 6) & 7U;
  status.sizeInBytes = status.kind == EntryKind::Directory ? 0 : found.stx_size;
  status.linkCount = found.stx_nlink;
  status.modified = timeOf(found, STATX_MTIME, found.stx_mtime);
  status.accessed = timeOf(found, STATX_ATIME, found.stx_atime);
  status.changed = timeOf(found, STATX_CTIME, found.stx_ctime);
  status.created = timeOf(found, STATX_BTIME, found.stx_btime);
  status.identity = {makedev(found.stx_dev_major, found.stx_dev_minor), found.stx_ino};
  return 0;
}

}  // namespace vel::platform
