// Converts the status of an entry to that of vel_files.h.
#pragma once

#include <cstdint>
#include <string_view>

#include "filesys/path_argument.h"
#include "platform/named_files.h"
#include "vel_include/vel_files.h"

namespace vel::filesys {

inline platform::LinkMeans meaningOf(VelEnLinks links) noexcept {
  return links == VEL_LINKS_KEEP ? platform::LinkMeans::Itself : platform::LinkMeans::Target;
}

inline VelEnFileKind publicKind(platform::EntryKind kind) noexcept {
  switch (kind) {
    case platform::EntryKind::File:
      return VEL_FILE_KIND_FILE;
    case platform::EntryKind::Directory:
      return VEL_FILE_KIND_DIRECTORY;
    case platform::EntryKind::Link:
      return VEL_FILE_KIND_LINK;
    case platform::EntryKind::Other:
      break;
  }
  return VEL_FILE_KIND_OTHER;
}

static_assert(VEL_TIME_UNKNOWN == platform::kUnknownTime);

/// Fills `status`, with zeros after an error.
inline VelClStatus giveStatus(platform::NativeError error, const platform::FullStatus& found,
                              std::string_view name, VelStFileStatus& status) noexcept {
  if (error != 0) {
    status = {};
    return statusOfCall(FILE_COULD_NOT_QUERY, error, name);
  }
  status.size = found.sizeInBytes;
  status.modified = found.modified;
  status.accessed = found.accessed;
  status.changed = found.changed;
  status.created = found.created;
  status.linkCount = found.linkCount;
  status.volume = found.identity.volume;
  status.number = found.identity.number;
  status.kind = publicKind(found.kind);
  status.ownerPermissions = found.ownerPermissions;
  for (std::uint64_t& field : status.reserved) field = 0;
  return {};
}

}  // namespace vel::filesys
