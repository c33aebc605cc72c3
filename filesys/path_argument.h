// Names that the plain functions of vel_files.h receive as pointer and size.
#pragma once

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <string_view>

#include "foundation/allocator.h"
#include "foundation/status.h"
#include "platform/named_files.h"
#include "platform/system_error.h"
#include "vel_include/vel_status.h"

namespace vel::filesys {

/// A NUL-terminated copy of a name, without memory of the heap for ordinary lengths.
class PathArgument {
 public:
  PathArgument(const char* text, std::size_t size) : name_(text, text != nullptr ? size : 0) {
    if (name_.size() < short_.size()) {
      if (!name_.empty()) std::memcpy(short_.data(), name_.data(), name_.size());
      short_[name_.size()] = '\0';
    } else {
      long_ = copyText(name_.data(), name_.size());
    }
  }
  PathArgument(const PathArgument&) = delete;
  PathArgument& operator=(const PathArgument&) = delete;

  /// Every name with a NUL inside would be another file's.
  bool isValid() const noexcept { return !name_.empty() && name_.find('\0') == std::string_view::npos; }
  VelClStatus invalid() const noexcept { return {PATH_INVALID, VelEnErrorClass::IO_INVALID_NAME, 0, name_}; }

  std::string_view view() const noexcept { return name_; }
  const char* get() const noexcept { return long_ != nullptr ? long_.get() : short_.data(); }
  char* get() noexcept { return long_ != nullptr ? long_.get() : short_.data(); }

 private:
  std::string_view name_;
  std::array<char, 512> short_;
  OwnedText long_;
};

inline bool isSeparator(char c) noexcept {
  return std::strchr(platform::nameSeparators(), c) != nullptr;
}

inline void endWithSeparator(String& path) {
  if (!path.empty() && !isSeparator(path.back())) path += *platform::nameSeparators();
}

/// The status of a system call; success for 0. A name that is ill-formed for the system is PATH_INVALID.
inline VelClStatus statusOfCall(unsigned long errorId, platform::NativeError error,
                                std::string_view name) noexcept {
  if (error == 0) return {};
  const bool isIllFormed = platform::preciseErrno(error) == EILSEQ;
  return systemFailure(isIllFormed ? +PATH_INVALID : errorId, error, name);
}

/// Runs `act` with a name as PathArgument and returns its status, or why the name is invalid.
template <typename Act>
VelStStatus* withPath(const char* path, std::size_t size, Act act) noexcept {
  return plainStatus([&]() -> VelClStatus {
    PathArgument name(path, size);
    return name.isValid() ? act(name) : name.invalid();
  });
}

/// The same for two names.
template <typename Act>
VelStStatus* withPaths(const char* from, std::size_t fromSize, const char* to, std::size_t toSize,
                       Act act) noexcept {
  return plainStatus([&]() -> VelClStatus {
    PathArgument source(from, fromSize), target(to, toSize);
    if (!source.isValid()) return source.invalid();
    return target.isValid() ? act(source, target) : target.invalid();
  });
}

}  // namespace vel::filesys
