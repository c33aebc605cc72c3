// What decides on the name of a trace file besides the variable and the calls that set it.
#pragma once

#include <cstdint>

#include "vel_include/vel_filesys.h"

namespace vel::trace {

/// The part of an environment that keeps files of several processes apart. The name itself is the
/// environment's.
class FileName {
 public:
  /// Returns `pattern` with the number of the process for each "%p".
  static VelClFilename expanded(const char* pattern, std::uint32_t process);
  /// Returns the name, a dot and the number of the process. A name that is too long is cut before them.
  static VelClFilename ofProcess(const VelClFilename& name, std::uint32_t process);

  /// Remembers the pattern of a name, for the child of a fork. Null and names without "%p" clear it.
  void setPattern(const char* pattern);
  /// Returns the name for a child, whose parent has `name`.
  VelClFilename ofChild(const VelClFilename& name, std::uint32_t child) const;
  /// True the first time after the name has been set: the file may be one that a killed program left.
  bool isToBeExamined() {
    const bool first = !examined_;
    examined_ = true;
    return first;
  }
  void examineAgain() { examined_ = false; }

 private:
  bool examined_ = false;
  char pattern_[VEL_MAX_PATH_LENGTH + 1] = {};
};

}  // namespace vel::trace
