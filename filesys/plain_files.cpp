// Status, creating and removing single entries, and reading and writing whole files.
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string_view>

#include "filesys/path_argument.h"
#include "filesys/public_status.h"
#include "filesys/random_name.h"
#include "foundation/allocator.h"
#include "platform/file_contents.h"
#include "platform/named_files.h"
#include "vel_include/vel_files.h"

namespace {

namespace platform = vel::platform;
using vel::filesys::isSeparator;
using vel::filesys::PathArgument;
using vel::filesys::statusOfCall;

/// The length of the name of the parent; 0 if it has none.
std::size_t lengthOfParent(std::string_view name) noexcept {
  std::size_t size = name.size();
  while (size > 0 && isSeparator(name[size - 1])) --size;
  while (size > 0 && !isSeparator(name[size - 1])) --size;
  while (size > 0 && isSeparator(name[size - 1])) --size;
  return size;
}

platform::NativeError createOrFind(const char* name) noexcept {
  const platform::NativeError error = platform::createDirectoryNamed(name);
  platform::FullStatus status;
  // Windows reports a root that exists as EACCES.
  const bool isThere = error != 0 && platform::preciseErrno(error) != ENOENT &&
                       platform::statusOfName(name, platform::LinkMeans::Target, status) == 0;
  return isThere && status.kind == platform::EntryKind::Directory ? 0 : error;
}

/// Creates the nearest parent whose own parent exists, then those below it.
platform::NativeError createWithParents(char* name, std::string_view whole) noexcept {
  const platform::NativeError error = createOrFind(name);
  if (error == 0 || platform::preciseErrno(error) != ENOENT) return error;
  std::size_t size = whole.size();
  platform::NativeError failed = error;
  while (platform::preciseErrno(failed) == ENOENT) {
    size = lengthOfParent({name, size});
    if (size == 0) return error;
    name[size] = '\0';
    failed = createOrFind(name);
  }
  while (failed == 0 && size < whole.size()) {
    name[size] = whole[size];
    size = std::min(size + 1 + std::strlen(name + size + 1), whole.size());
    failed = createOrFind(name);
  }
  return failed;
}

/// The bytes of a file that are read so far, with room for a NUL.
class Contents {
 public:
  explicit Contents(std::size_t limit) noexcept : limit_(limit) {}

  /// Makes room for more; false if there are more bytes than allowed. Small sizes are not relied on: the
  /// system gives some of its own files a size that is larger than their contents.
  bool grow(std::uint64_t expected) {
    constexpr std::uint64_t kReliable = 1024 * 1024;
    if (expected > kReliable && expected > limit_ - size_) return false;
    constexpr std::size_t kSmallest = 4096;
    const std::size_t most = limit_ == static_cast<std::size_t>(-1) ? limit_ - 1 : limit_;
    const std::size_t wanted = std::max({capacity_ * 2, kSmallest, bounded(expected, most)});
    // One byte beyond the limit shows that the file is larger.
    capacity_ = std::min(wanted, most) + 1;
    char* const block = data_.release();
    data_.reset(block == nullptr ? static_cast<char*>(VelClMemoryManager::malloc(capacity_ + 1))
                                 : resized(block));
    return true;
  }

  char* end() noexcept { return data_.get() + size_; }
  std::size_t room() const noexcept { return capacity_ - size_; }
  void add(std::size_t size) noexcept { size_ += size; }
  bool isTooLarge() const noexcept { return size_ > limit_; }

  void give(char** data, std::size_t* size) noexcept {
    data_[size_] = '\0';
    *size = size_;
    *data = data_.release();
  }

 private:
  static std::size_t bounded(std::uint64_t expected, std::size_t most) noexcept {
    return expected < most ? static_cast<std::size_t>(expected) : most;
  }
  char* resized(char* block) {
    vel::OwnedText larger(static_cast<char*>(VelClMemoryManager::malloc(capacity_ + 1)));
    vel::OwnedText old(block);
    std::memcpy(larger.get(), old.get(), size_);
    return larger.release();
  }

  std::size_t limit_, size_ = 0, capacity_ = 0;
  vel::OwnedText data_;
};

VelClStatus tooLarge(std::string_view name) noexcept {
  return {FILE_TOO_LARGE, VelEnErrorClass::DATA_OUT_OF_BOUNDS, 0, name};
}

VelClStatus readAll(platform::SourceFile& file, const PathArgument& name, Contents& contents) {
  std::size_t size = 0;
  do {
    if (contents.room() == 0 && !contents.grow(file.sizeLeft())) return tooLarge(name.view());
    if (const auto error = file.read(contents.end(), contents.room(), size); error != 0)
      return statusOfCall(FILE_COULD_NOT_READ, error, name.view());
    contents.add(size);
    if (contents.isTooLarge()) return tooLarge(name.view());
  } while (size != 0);
  return {};
}

vel::String temporaryDirectory() {
  vel::String directory(512, '\0');
  std::size_t size = platform::temporaryDirectory(directory.data(), directory.size());
  if (size >= directory.size()) {
    directory.resize(size + 1);
    size = platform::temporaryDirectory(directory.data(), directory.size());
  }
  directory.resize(std::min(size, directory.size()));
  return directory;
}

VelClStatus createTemporary(const vel::String& directory, std::string_view prefix, bool isDirectory,
                            vel::OwnedText& path, std::size_t& size) {
  const unsigned long id = isDirectory ? +DIRECTORY_COULD_NOT_CREATE : +FILE_COULD_NOT_OPEN;
  // With 120 random bits, one collision is a sign of something else.
  for (int attempt = 0;; ++attempt) {
    vel::String name(directory);
    vel::filesys::endWithSeparator(name);
    name += prefix;
    if (!vel::filesys::appendRandomCharacters(name))
      return VelClStatus(id, VelEnErrorClass::RESOURCE_EXHAUSTED, 0, directory);
    const platform::NativeError error = platform::createPrivately(name.c_str(), isDirectory);
    if (platform::preciseErrno(error) == EEXIST && attempt < 100) continue;
    if (error != 0) return statusOfCall(id, error, name);
    path = vel::copyText(name.data(), name.size());
    size = name.size();
    return {};
  }
}

VelStStatus* temporary(std::string_view directory, std::string_view prefix, bool isDirectory, char** path,
                       std::size_t* resultSize) noexcept {
  *path = nullptr;
  if (resultSize != nullptr) *resultSize = 0;
  return vel::plainStatus([&]() -> VelClStatus {
    const auto hasNul = [](std::string_view text) { return text.find('\0') != std::string_view::npos; };
    for (const std::string_view text : {directory, prefix})
      if (hasNul(text)) return {PATH_INVALID, VelEnErrorClass::IO_INVALID_NAME, 0, text};
    const vel::String place = directory.empty() ? temporaryDirectory() : vel::String(directory);
    vel::OwnedText name;
    std::size_t size = 0;
    VelClStatus status = createTemporary(place, prefix, isDirectory, name, size);
    if (resultSize != nullptr) *resultSize = size;
    *path = name.release();
    return status;
  });
}

std::string_view viewOf(const char* text, std::size_t size) noexcept {
  return text != nullptr ? std::string_view(text, size) : std::string_view();
}

}  // namespace

VelStStatus* velFileExists(const char* path, size_t pathSize, bool* exists) {
  *exists = false;
  return vel::filesys::withPath(path, pathSize, [&](const PathArgument& name) {
    return statusOfCall(FILE_COULD_NOT_QUERY, platform::nameExists(name.get(), *exists), name.view());
  });
}

VelStStatus* velFileGetStatus(const char* path, size_t pathSize, enum VelEnLinks links,
                              VelStFileStatus* status) {
  VelStStatus* const failure = vel::filesys::withPath(path, pathSize, [&](const PathArgument& name) {
    platform::FullStatus found;
    const auto error = platform::statusOfName(name.get(), vel::filesys::meaningOf(links), found);
    return vel::filesys::giveStatus(error, found, name.view(), *status);
  });
  if (failure != nullptr) *status = {};
  return failure;
}

VelStStatus* velDirectoryCreate(const char* path, size_t pathSize, bool parents) {
  return vel::filesys::withPath(path, pathSize, [&](PathArgument& name) {
    const auto error =
        parents ? createWithParents(name.get(), name.view()) : platform::createDirectoryNamed(name.get());
    return statusOfCall(DIRECTORY_COULD_NOT_CREATE, error, name.view());
  });
}

VelStStatus* velFileRemove(const char* path, size_t pathSize) {
  return vel::filesys::withPath(path, pathSize, [](const PathArgument& name) {
    return statusOfCall(FILE_COULD_NOT_REMOVE, platform::removeNamed(name.get()), name.view());
  });
}

VelStStatus* velTemporaryFileCreate(const char* directory, size_t directorySize, const char* prefix,
                                    size_t prefixSize, char** path, size_t* resultSize) {
  return temporary(viewOf(directory, directorySize), viewOf(prefix, prefixSize), false, path, resultSize);
}

VelStStatus* velTemporaryDirectoryCreate(const char* directory, size_t directorySize, const char* prefix,
                                         size_t prefixSize, char** path, size_t* resultSize) {
  return temporary(viewOf(directory, directorySize), viewOf(prefix, prefixSize), true, path, resultSize);
}

VelStStatus* velFileRead(const char* path, size_t pathSize, size_t limit, char** data, size_t* dataSize) {
  *data = nullptr;
  *dataSize = 0;
  return vel::filesys::withPath(path, pathSize, [&](const PathArgument& name) {
    platform::SourceFile file;
    VelClStatus status = statusOfCall(FILE_COULD_NOT_OPEN, file.open(name.get()), name.view());
    if (!status.isOk()) return status;
    Contents contents(limit);
    status = readAll(file, name, contents);
    if (status.isOk()) contents.give(data, dataSize);
    return status;
  });
}

VelStStatus* velFileReplace(const char* path, size_t pathSize, const void* data, size_t dataSize) {
  return vel::filesys::withPath(path, pathSize, [&](const PathArgument& name) {
    return statusOfCall(FILE_COULD_NOT_WRITE, platform::replaceContents(name.get(), data, dataSize),
                        name.view());
  });
}

VelStStatus* velFileAppend(const char* path, size_t pathSize, const void* data, size_t dataSize) {
  return vel::filesys::withPath(path, pathSize, [&](const PathArgument& name) {
    return statusOfCall(FILE_COULD_NOT_WRITE, platform::appendTo(name.get(), data, dataSize), name.view());
  });
}
