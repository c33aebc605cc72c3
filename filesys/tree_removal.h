// Removes the contents of a directory, recursively.
#pragma once

namespace vel::filesys {

/// Removes entries until one cannot be removed. Links are never followed: they are removed themselves, but a
/// link in the place of `directory` stays unchanged. Not removed are directories whose names
/// isSubDirectoryName rejects, with their contents, and the contents of a root: that of this process, on
/// Windows that of the drive, and that of the share in the name. Failures are not reported; they show when
/// the directory itself is removed.
void removeContents(const char* directory) noexcept;

}  // namespace vel::filesys
