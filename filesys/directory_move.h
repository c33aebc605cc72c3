// Moves a directory to another file system.
#pragma once

#include "filesys/path_argument.h"
#include "vel_include/vel_status.h"

namespace vel::filesys {

/// Copies a directory with its contents, rights and times to a temporary name beside the target, renames it,
/// and removes the old one. The target must not exist. After a failure, nothing is left of the copy.
VelClStatus moveDirectoryByCopy(const PathArgument& from, const PathArgument& to);

}  // namespace vel::filesys
