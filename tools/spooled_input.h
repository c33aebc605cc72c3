// Standard input as a file, for the classes of the library that read files by name.
#pragma once

#include "vel_include/vel_filesys.h"

namespace vel::tools {

/// A temporary file that only this user can read, with all of standard input. It is removed when the object
/// is destroyed; give the object static lifetime if the process may end by processExit before.
class SpooledInput {
 public:
  /// Reads standard input to its end. `extension` is that of the file.
  explicit SpooledInput(const char* extension);
  SpooledInput(const SpooledInput&) = delete;
  SpooledInput& operator=(const SpooledInput&) = delete;
  ~SpooledInput();

  /// Whether all of standard input is in the file.
  bool isComplete() const { return complete_; }
  const char* name() const { return file_.getAsCString(); }

 private:
  bool spool(char* name);

  bool complete_;
  VelClFile file_;
};

}  // namespace vel::tools
