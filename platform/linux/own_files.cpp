// The program's path is in /proc, the library's in the loader's list of what it has loaded.
#include "platform/posix/own_files.h"

#include <dlfcn.h>
#include <link.h>
#include <unistd.h>

#include <cstdlib>

namespace vel::platform {

namespace {

/// The library's path may be relative to the directory that was current when it was loaded, so it is resolved
/// at once.
class LibraryDirectory {
 public:
  LibraryDirectory() noexcept {
    static const char kInsideThisLibrary = 0;
    Dl_info info{};
    void* map = nullptr;
    if (dladdr1(&kInsideThisLibrary, &info, &map, RTLD_DL_LINKMAP) == 0) return;
    const char* const path = static_cast<const link_map*>(map)->l_name;
    // Code that is linked into the program has the empty path.
    if (*path == '\0')
      directory_ = programDirectory(buffer_);
    else if (realpath(path, buffer_.data()) != nullptr)
      directory_ = directoryOf(buffer_.data());
  }

  std::string_view get() const noexcept { return directory_; }

 private:
  PathBuffer buffer_;
  std::string_view directory_;
};

const LibraryDirectory ownDirectory;

}  // namespace

std::string_view programDirectory(PathBuffer& buffer) noexcept {
  const ssize_t length = readlink("/proc/self/exe", buffer.data(), buffer.size());
  if (length <= 0 || static_cast<std::size_t>(length) == buffer.size()) return {};
  return directoryOf({buffer.data(), static_cast<std::size_t>(length)});
}

std::string_view libraryDirectory() noexcept {
  return ownDirectory.get();
}

}  // namespace vel::platform
