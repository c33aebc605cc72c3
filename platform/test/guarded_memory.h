// Memory between two inaccessible pages: whoever reads or writes a byte too far ends there.
#pragma once

#include <cstddef>

namespace vel::test {

/// Lives until the end of the program.
class GuardedMemory {
 public:
  /// At least `size` bytes, in whole pages.
  explicit GuardedMemory(std::size_t size);

  /// A place for `size` bytes that ends, or else begins, at an inaccessible page.
  char* place(std::size_t size, bool atEnd) const { return atEnd ? begin_ + size_ - size : begin_; }

 private:
  std::size_t size_;
  char* begin_;
};

}  // namespace vel::test
