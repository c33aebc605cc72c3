// Removes what is in a directory and below it.
#pragma once

namespace vel::filesys {

/// Empties the directory up to the first entry that cannot be removed. Links are never followed: they are
/// removed themselves, and one in the place of `directory` is left as it is. Directories whose names
/// isSubDirectoryName rejects stay, with their contents.
void removeContents(const char* directory) noexcept;

}  // namespace vel::filesys
