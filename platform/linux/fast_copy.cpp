// Shares the blocks of both files where the file system can (FICLONE); otherwise copies the segments of data
// between the holes by copy_file_range.
#include "platform/posix/fast_copy.h"

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>

#include "platform/posix/descriptor.h"

namespace vel::platform {

namespace {

/// The kernel returns to user space after each step, so that a signal can end the program.
constexpr std::size_t kMaxStep = std::size_t{1} << 30;

struct Segment {
  off_t begin, end;
};

/// Finds the next data from `at` on; it is empty after the last. Without knowledge of holes, everything is
/// one segment.
Segment nextSegment(int source, off_t at, off_t size) noexcept {
  const off_t begin = lseek(source, at, SEEK_DATA);
  // ENXIO: only a hole is left.
  if (begin < 0) return {errno == ENXIO ? size : at, size};
  const off_t end = lseek(source, begin, SEEK_HOLE);
  return {begin, end < 0 ? size : std::min(end, size)};
}

/// Copies a segment; `begin` tells how far it got. Returns false if it did not get to the end. The reason
/// does not matter: copying the rest by reading meets it again, if it is one.
bool copySegment(int source, int target, Segment& segment) noexcept {
  off_t to = segment.begin;
  while (segment.begin < segment.end) {
    const auto step = std::min(static_cast<std::size_t>(segment.end - segment.begin), kMaxStep);
    if (retrying([&] { return copy_file_range(source, &segment.begin, target, &to, step, 0); }) <= 0)
      return false;
  }
  return true;
}

SystemError setPositions(int source, int target, off_t position) noexcept {
  return lseek(source, position, SEEK_SET) < 0 || lseek(target, position, SEEK_SET) < 0 ? errno : 0;
}

}  // namespace

SystemError copyInKernel(int source, int target, std::uint64_t sizeInBytes) noexcept {
  const auto size = static_cast<off_t>(sizeInBytes);
  if (size != 0 && ioctl(target, FICLONE, source) == 0) return setPositions(source, target, size);
  off_t at = 0;
  for (bool isWhole = true; isWhole && at < size;) {
    Segment segment = nextSegment(source, at, size);
    isWhole = copySegment(source, target, segment);
    at = isWhole ? segment.end : segment.begin;
  }
  // A hole at the end needs the size only.
  if (at > 0 && retrying([&] { return ftruncate(target, at); }) != 0) return errno;
  return setPositions(source, target, at);
}

}  // namespace vel::platform
