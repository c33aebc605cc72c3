// Closes descriptors in a child between fork and exec. close_range does it in one call; older kernels list
// the open descriptors in /proc, which is read with getdents64 directly, because opendir() allocates and is
// not async-signal-safe.
#include "platform/posix/inheritance.h"

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <climits>
#include <cstring>

#include "base/ascii.h"
#include "platform/linux/kernel_entry.h"

namespace vel::platform {

namespace {

/// Parses a descriptor; returns -1 for "." and "..".
int descriptorIn(const char* name) noexcept {
  int number = 0;
  for (; *name != '\0'; ++name) {
    if (!isAsciiDigit(*name)) return -1;
    number = number * 10 + (*name - '0');
  }
  return number;
}

/// Returns the first listed descriptor from `first` on, other than the listing's own; -1 after the last one.
/// Starts over each time: closing a descriptor removes its entry, and reading on could skip one.
int nextDescriptor(int listing, int first) noexcept {
  char entries[1024];
  lseek(listing, 0, SEEK_SET);
  long length = 0;
  while ((length = syscall(SYS_getdents64, listing, entries, sizeof entries)) > 0) {
    for (long at = 0; at < length;) {
      KernelEntry entry;
      std::memcpy(&entry, entries + at, sizeof entry);
      const int descriptor = descriptorIn(entries + at + kNameOffset);
      if (descriptor >= first && descriptor != listing) return descriptor;
      at += entry.length;
    }
  }
  return -1;
}

}  // namespace

void closeListedDescriptors(int first) noexcept {
  const int listing = open("/proc/self/fd", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (listing < 0) return;
  for (int next = 0; (next = nextDescriptor(listing, first)) >= 0;) close(next);
  close(listing);
}

void closeDescriptorsFrom(int first) noexcept {
#if defined(SYS_close_range)
  if (syscall(SYS_close_range, first, ~0U, 0) == 0) return;
#endif
  closeListedDescriptors(first);
}

}  // namespace vel::platform
