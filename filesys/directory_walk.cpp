// Implements the walk that programs use: a directory walker together with the error record that it reports
// to, and wildcard matching under the case rule of the directory's name.
#include "vel_include/vel_filesys.h"
#include "vel_include/vel_util.h"

VelClDirectoryWalk::VelClDirectoryWalk(const VelClDirectory& directory)
    : VelClDirectoryWalk(directory.getName()) {}

VelClDirectoryWalk::VelClDirectoryWalk(const VelClLocation& directory)
    : walker_(directory, error_), caseSensitive_(directory.isCaseSensitive()) {}

VelClDirectoryWalk::~VelClDirectoryWalk() = default;

bool VelClDirectoryWalk::matchesWildcardPattern(const char* pattern) const {
  return isValid() && velMatchesWildcardPattern(pattern, getNameWithoutPath(), caseSensitive_);
}
