// Generates names for temporary files. The caller checks whether a name is free.
#pragma once

#include <cstddef>

#include "vel_include/vel_filesys.h"
#include "vel_include/vel_util.h"

namespace vel::filesys {

/// Generates random names in a fixed form; not thread-safe.
class TmpNameGenerator {
 public:
  /// The length of a name: eight characters, which are the prefix and random ones, a dot, and three digits.
  static constexpr std::size_t kLength = 12;

  /// Uses the first 5 characters of `prefix`; null counts as "". Seeded by the system's tick count in
  /// milliseconds.
  explicit TmpNameGenerator(const char* prefix);

  /// Returns the next name, owned by the object and valid until the next call.
  const char* next();

 private:
  VelClRandomNumberGenerator numbers_;
  std::size_t prefixLength_;
  char text_[kLength + 1];
};

/// Bounds the retry loop: gives up once the first name has come up 16 times more, by when every possible name
/// has almost certainly been tried. With few random characters, names repeat soon.
class RetryLimit {
 public:
  /// Call with each name that is in use. Returns false when the first of them has been repeated too often.
  bool mayRetry(const char* text);

 private:
  int left_ = 16;
  char first_[VEL_MAX_PATH_LENGTH + 1] = "";
};

}  // namespace vel::filesys
