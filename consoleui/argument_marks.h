// Marks arguments that are data although they begin with "-". The cursors over a command line hold nothing
// but the vector and an index, and their layout is fixed, so the marks are found by the address of the
// vector. Only rewritten command lines have marks. Without them the query costs one load.
#pragma once

#include <cstdint>

#include "foundation/allocator.h"

namespace vel::consoleui {

/// The marks of one vector of arguments, which are known while this object lives.
class ArgumentMarks {
 public:
  /// `isData` has one entry for each argument of the vector, the program included.
  ArgumentMarks(const char* const* arguments, Vector<bool> isData);
  ArgumentMarks(const ArgumentMarks&) = delete;
  ArgumentMarks& operator=(const ArgumentMarks&) = delete;
  ~ArgumentMarks();

  /// True if the argument at an index is marked. The index may be any number.
  static bool isData(const char* const* arguments, std::int32_t index) noexcept;

 private:
  const char* const* arguments_;
  Vector<bool> isData_;
  ArgumentMarks* next_;
};

}  // namespace vel::consoleui
