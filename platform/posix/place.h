// Names of any length: a system call takes less than PATH_MAX bytes at a time.
#pragma once

#include "platform/posix/descriptor.h"
#include "platform/system_error.h"

namespace vel::platform {

/// The directory and the rest of a name for openat and its like. A name that fits into one call is passed
/// unchanged; of a longer one, the first components are opened here.
class Place {
 public:
  /// `name` must outlive the object.
  explicit Place(const char* name) noexcept;

  /// Check it before the other functions are used.
  SystemError error() const noexcept { return error_; }
  int directory() const noexcept { return directory_; }
  const char* name() const noexcept { return name_; }

 private:
  /// Opens as many components as one call takes.
  bool enter(std::size_t size) noexcept;

  int directory_;
  SystemError error_ = 0;
  const char* name_;
  Descriptor opened_;
};

}  // namespace vel::platform
