// Lists directories by getdents64, which tells the kind of most entries, and reads many at a time.
#include "platform/listing.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <utility>

#include "platform/linux/kernel_entry.h"
#include "platform/posix/descriptor.h"
#include "platform/posix/file_status.h"
#include "platform/posix/place.h"
#include "platform/posix/target.h"

namespace vel::platform {

namespace {

int descriptorOf(const Listing& listing) noexcept {
  return static_cast<int>(listing.handle);
}

NativeError failureOf(long result) noexcept {
  return result < 0 ? static_cast<NativeError>(errno) : 0;
}

NativeError openAt(int place, const char* name, DirectoryLink link, Listing& listing) noexcept {
  const int flags = O_RDONLY | O_DIRECTORY | O_CLOEXEC | (link == DirectoryLink::Refuse ? O_NOFOLLOW : 0);
  listing.at = listing.size = 0;
  listing.handle = retrying([&] { return openat(place, name, flags); });
  return failureOf(listing.handle);
}

EntryKind kindOf(const Listing& listing, unsigned char type, const char* name) noexcept {
  switch (type) {
    case DT_REG:
      return EntryKind::File;
    case DT_DIR:
      return EntryKind::Directory;
    case DT_LNK:
      return EntryKind::Link;
    case DT_UNKNOWN: {
      FullStatus status;
      const bool isKnown = statusAt(descriptorOf(listing), name, LinkMeans::Itself, status) == 0;
      return isKnown ? status.kind : EntryKind::Other;
    }
    default:
      return EntryKind::Other;
  }
}

bool isDots(const char* name) noexcept {
  return name[0] == '.' && (name[1] == '\0' || (name[1] == '.' && name[2] == '\0'));
}

}  // namespace

const char* shownName(std::string_view systemName, char (&)[kEntryNameCapacity], std::size_t& size) noexcept {
  size = systemName.size();
  return systemName.data();
}

NativeError openListing(const char* name, DirectoryLink link, Listing& listing) noexcept {
  const Place place(name);
  if (place.error() != 0) return static_cast<NativeError>(place.error());
  return openAt(place.directory(), place.name(), link, listing);
}

NativeError openListed(const Listing& parent, std::string_view systemName, DirectoryLink link,
                       Listing& listing) noexcept {
  return openAt(descriptorOf(parent), systemName.data(), link, listing);
}

void closeListing(Listing& listing) noexcept {
  if (listing.handle >= 0) close(static_cast<int>(std::exchange(listing.handle, -1)));
}

NativeError nextListed(Listing& listing, ListedEntry& entry, ListingStep& step) noexcept {
  for (;;) {
    if (listing.at == listing.size) {
      const long size = retrying(
          [&] { return syscall(SYS_getdents64, listing.handle, listing.buffer, sizeof listing.buffer); });
      listing.at = 0;
      listing.size = size > 0 ? static_cast<std::size_t>(size) : 0;
      step = ListingStep::End;
      // ENOENT: the directory was removed while it was open.
      if (size <= 0) return size == 0 || errno == ENOENT ? 0 : failureOf(size);
    }
    KernelEntry found;
    const char* const start = listing.buffer + listing.at;
    std::memcpy(&found, start, sizeof found);
    listing.at += found.length;
    const char* const name = start + kNameOffset;
    if (isDots(name)) continue;
    entry.systemName = name;
    entry.kind = kindOf(listing, found.type, name);
    step = ListingStep::Entry;
    return 0;
  }
}

NativeError identityOfListing(const Listing& listing, FileIdentity& identity) noexcept {
  struct stat status;
  if (const NativeError error = failureOf(fstat(descriptorOf(listing), &status)); error != 0) return error;
  identity = identityOf(status);
  return 0;
}

bool isRoot(const Listing& listing, const FileIdentity& processRoot) noexcept {
  FileIdentity own;
  return identityOfListing(listing, own) != 0 || own == processRoot;
}

FileIdentity identityOfProcessRoot() noexcept {
  struct stat root;
  return stat("/", &root) == 0 ? identityOf(root) : FileIdentity{};
}

NativeError statusOfListed(const Listing& parent, std::string_view systemName, LinkMeans links,
                           FullStatus& status) noexcept {
  return static_cast<NativeError>(statusAt(descriptorOf(parent), systemName.data(), links, status));
}

NativeError removeListed(const Listing& parent, std::string_view systemName, bool isDirectory) noexcept {
  return failureOf(unlinkat(descriptorOf(parent), systemName.data(), isDirectory ? AT_REMOVEDIR : 0));
}

}  // namespace vel::platform
