// The arguments of this process in UTF-8.
#pragma once

namespace vel::environment {

struct ArgumentVector {
  int count;
  const char* const* texts;
};

/// Returns the arguments in UTF-8 if the given ones are those of main and velIsUtf8Used, else the given ones:
/// a program may have made its own vector.
ArgumentVector inUtf8(int count, const char* const* arguments);

}  // namespace vel::environment
