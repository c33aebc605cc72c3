// A command line split into arguments by the rules of the Windows C runtime.
#pragma once

#include <cstddef>

#include "foundation/allocator.h"

namespace vel::process {

/// The arguments of one command line. The first is the program's name, where quotes keep blanks together and
/// back-slashes mean nothing. In the others blanks and tabs separate outside quotes; 2n back-slashes before
/// a quote are n, 2n + 1 are n and make the quote an ordinary character; two quotes inside quotes are
/// one ordinary quote. Other back-slashes stand for themselves. Quotes that do not end reach to the end.
class Arguments {
 public:
  explicit Arguments(const char* commandLine);

  std::size_t count() const noexcept { return pointers_.size() - 1; }
  /// The texts, with a null pointer behind the last one. At least one.
  char* const* get() const noexcept { return pointers_.data(); }

 private:
  OwnedText texts_;
  Vector<char*> pointers_;
};

}  // namespace vel::process
