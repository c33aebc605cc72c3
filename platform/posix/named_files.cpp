// Status, creating and removing of entries by names of any length.
#include "platform/named_files.h"

#include <fcntl.h>
#include <stdio.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>
#include <cstring>

#include "platform/environment.h"
#include "platform/files.h"
#include "platform/posix/beside.h"
#include "platform/posix/descriptor.h"
#include "platform/posix/file_status.h"
#include "platform/posix/place.h"
#include "platform/posix/rename.h"
#include "platform/posix/target.h"

namespace vel::platform {

namespace {

NativeError nativeFrom(SystemError error) noexcept {
  return static_cast<NativeError>(error);
}

/// The error of a call that returns -1 on failure.
NativeError nativeOf(int result) noexcept {
  return result == -1 ? nativeFrom(errno) : 0;
}

/// Calls `act` with the directory and the rest of a name.
template <typename Act>
NativeError at(const char* name, Act act) noexcept {
  const Place place(name);
  return place.error() != 0 ? nativeFrom(place.error()) : act(place.directory(), place.name());
}

/// Makes the link under a name of its own beside the target and renames it.
NativeError replaceByLink(const char* text, const Place& target) noexcept {
  BesideTarget beside;
  SystemError error = findTargetAt(target.directory(), target.name(), LastLink::Hold, beside);
  if (error == 0) error = linkBeside(text, beside);
  if (error == 0) error = moveIntoPlace(beside);
  return nativeFrom(error);
}

}  // namespace

const char* nameSeparators() noexcept {
  return "/";
}

bool ignoresCaseOfNames() noexcept {
  return false;
}

char32_t foldedForNames(char32_t character) noexcept {
  return character;
}

NativeError statusOfName(const char* name, LinkMeans links, FullStatus& status) noexcept {
  return at(name, [&](int directory, const char* rest) {
    return nativeFrom(statusAt(directory, rest, links, status));
  });
}

NativeError nameExists(const char* name, bool& exists) noexcept {
  const NativeError error = at(name, [](int directory, const char* rest) {
    return nativeOf(faccessat(directory, rest, F_OK, AT_EACCESS));
  });
  exists = error == 0;
  return error == ENOENT || error == ENOTDIR ? 0 : error;
}

NativeError createDirectoryNamed(const char* name) noexcept {
  return at(name, [](int directory, const char* rest) { return nativeOf(mkdirat(directory, rest, 0777)); });
}

NativeError createPrivately(const char* name, bool isDirectory) noexcept {
  return at(name, [isDirectory](int directory, const char* rest) {
    if (isDirectory) return nativeOf(mkdirat(directory, rest, S_IRWXU));
    constexpr int kFlags = O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC;
    const Descriptor file(retrying([&] { return openat(directory, rest, kFlags, S_IRUSR | S_IWUSR); }));
    return nativeOf(file.get());
  });
}

NativeError removeNamed(const char* name) noexcept {
  return at(name, [](int directory, const char* rest) {
    if (unlinkat(directory, rest, 0) == 0) return NativeError{0};
    // EPERM: what POSIX has a system report for a directory; Linux reports EISDIR.
    const int error = errno;
    if (error != EISDIR && error != EPERM) return nativeFrom(error);
    if (unlinkat(directory, rest, AT_REMOVEDIR) == 0) return NativeError{0};
    return nativeFrom(errno == ENOTDIR ? error : errno);
  });
}

NativeError renameNamed(const char* from, const char* to, bool replaces) noexcept {
  const Place source(from), target(to);
  for (const Place* place : {&source, &target})
    if (place->error() != 0) return nativeFrom(place->error());
  if (replaces)
    return nativeOf(renameat(source.directory(), source.name(), target.directory(), target.name()));
  return nativeFrom(
      renameWithoutReplacing(source.directory(), source.name(), target.directory(), target.name()));
}

NativeError copyLink(const char* from, const char* to, bool replaces) noexcept {
  const Place source(from), target(to);
  for (const Place* place : {&source, &target})
    if (place->error() != 0) return nativeFrom(place->error());
  std::array<char, PATH_MAX> text;
  const ssize_t size = readlinkat(source.directory(), source.name(), text.data(), text.size());
  if (size < 0) return nativeFrom(errno);
  if (static_cast<std::size_t>(size) == text.size()) return ENAMETOOLONG;
  text[static_cast<std::size_t>(size)] = '\0';
  if (symlinkat(text.data(), target.directory(), target.name()) == 0) return 0;
  if (errno != EEXIST || !replaces) return nativeFrom(errno);
  return replaceByLink(text.data(), target);
}

NativeError copyRightsNamed(const char* from, const char* to) noexcept {
  const Place source(from), target(to);
  for (const Place* place : {&source, &target})
    if (place->error() != 0) return nativeFrom(place->error());
  struct stat status;
  if (fstatat(source.directory(), source.name(), &status, 0) != 0) return nativeFrom(errno);
  const timespec times[] = {status.st_atim, status.st_mtim};
  if (fchmodat(target.directory(), target.name(), status.st_mode & 0777, 0) != 0) return nativeFrom(errno);
  return nativeOf(utimensat(target.directory(), target.name(), times, 0));
}

std::size_t temporaryDirectory(char* out, std::size_t capacity) noexcept {
  const char* found = nullptr;
  for (const char* variable : {"TMP", "TEMP"})
    if (found == nullptr || *found == '\0') found = settingValue(variable);
  if (found == nullptr || *found == '\0') found = fallbackTmpDirectory();
  const std::size_t size = std::strlen(found);
  if (size < capacity) std::memcpy(out, found, size + 1);
  return size;
}

NativeError unpredictableNumber(std::uint64_t& number) noexcept {
  return nativeOf(getentropy(&number, sizeof number));
}

}  // namespace vel::platform
