// Splits a command line into arguments by the rules of the Windows C runtime.
#pragma once

#include <cstddef>

#include "foundation/allocator.h"

namespace vel::environment {

/// The arguments of one command line. The first one is the program's name, in which quotes protect blanks and
/// backslashes are ordinary. The other arguments are separated by blanks and tabs outside quotes. 2n
/// backslashes before a quote yield n backslashes; 2n + 1 yield n backslashes and an ordinary quote. Two
/// quotes within quotes yield one ordinary quote. All other backslashes are ordinary. A quoted section that
/// is not closed ends with the line.
class Arguments {
 public:
  explicit Arguments(const char* commandLine);

  std::size_t count() const noexcept { return pointers_.size() - 1; }
  /// The arguments, at least one, with a null pointer after the last; owned by this object.
  char* const* get() const noexcept { return pointers_.data(); }

 private:
  OwnedText texts_;
  Vector<char*> pointers_;
};

}  // namespace vel::environment
