// Locates the program by /proc/self/exe, and this library by the dynamic loader's list of loaded objects.
#include "platform/posix/own_files.h"

#include <dlfcn.h>
#include <link.h>
#include <unistd.h>

#include <cstdlib>

namespace vel::platform {

namespace {

/// Resolved once, when the library is loaded: its path may be relative to the directory that is current then.
class LibraryDirectory {
 public:
  LibraryDirectory() noexcept {
    static const char kInsideThisLibrary = 0;
    Dl_info info{};
    void* map = nullptr;
    if (dladdr1(&kInsideThisLibrary, &info, &map, RTLD_DL_LINKMAP) == 0) return;
    const char* const path = static_cast<const link_map*>(map)->l_name;
    // The loader gives the program itself, into which this code may be linked, an empty path.
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
  // readlink truncates silently, so a full buffer may hold an incomplete path.
  if (length <= 0 || static_cast<std::size_t>(length) == buffer.size()) return {};
  return directoryOf({buffer.data(), static_cast<std::size_t>(length)});
}

std::string_view libraryDirectory() noexcept {
  return ownDirectory.get();
}

}  // namespace vel::platform
