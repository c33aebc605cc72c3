// Draws names for temporary files; whether one is free is the caller's question.
#pragma once

#include <cstddef>

#include "vel_include/vel_filesys.h"
#include "vel_include/vel_util.h"

namespace vel::filesys {

class TmpNameGenerator {
 public:
  /// Prefix and random characters, a dot, and three digits.
  static constexpr std::size_t kLength = 12;

  /// Null counts as "". Seeded by the system's milliseconds.
  explicit TmpNameGenerator(const char* prefix);

  /// The next name, owned by the object.
  const char* next();

 private:
  VelClRandomNumberGenerator numbers_;
  std::size_t prefixLength_;
  char text_[kLength + 1];
};

/// Ends a search whose names come round again: it counts how often the first one does. With few random
/// characters every possible name has been tried by then, as good as certainly.
class RetryLimit {
 public:
  /// False when the first text has come too often.
  bool mayRetry(const char* text);

 private:
  int left_ = 16;
  char first_[VEL_MAX_PATH_LENGTH + 1] = "";
};

}  // namespace vel::filesys
