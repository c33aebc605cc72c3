// Removes what is in a directory and below it.
#pragma once

namespace vel::filesys {

/// Empties the directory up to the first entry that cannot be removed. Links are never followed: they are
/// removed themselves, and one in the place of `directory` is left as it is. Directories whose names
/// isSubDirectoryName rejects stay, with their contents, and so do the contents of a root: of this process,
/// on Windows of the drive, and of the share that the name begins with.
void removeContents(const char* directory) noexcept;

}  // namespace vel::filesys
