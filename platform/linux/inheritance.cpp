// Closing descriptors in a child. The kernel lists them; reading the directory through the C library would
// allocate.
#include "platform/posix/inheritance.h"

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "base/ascii.h"

namespace vel::platform {

namespace {

/// One entry as the kernel writes it, up to its name.
struct KernelEntry {
  std::uint64_t inode;
  std::int64_t offset;
  std::uint16_t length;
  std::uint8_t type;
};
constexpr std::size_t kNameOffset = 19;

/// The number in decimal, -1 for "." and "..".
int numberIn(const char* name) noexcept {
  int number = 0;
  for (; *name != '\0'; ++name) {
    if (!isAsciiDigit(*name)) return -1;
    number = number * 10 + (*name - '0');
  }
  return number;
}

/// The first listed descriptor from `first` on, other than the listing's own; -1 when there is none.
int nextDescriptor(int listing, int first) noexcept {
  char entries[1024];
  lseek(listing, 0, SEEK_SET);
  long length = 0;
  while ((length = syscall(SYS_getdents64, listing, entries, sizeof entries)) > 0) {
    for (long at = 0; at < length;) {
      KernelEntry entry;
      std::memcpy(&entry, entries + at, sizeof entry);
      const int number = numberIn(entries + at + kNameOffset);
      if (number >= first && number != listing) return number;
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
