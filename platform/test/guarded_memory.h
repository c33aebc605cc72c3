// Memory between two inaccessible pages, so that a read or write past either end crashes.
#pragma once

#include <cstddef>

namespace vel::test {

/// The memory is never freed.
class GuardedMemory {
 public:
  /// Allocates whole pages of at least `size` bytes.
  explicit GuardedMemory(std::size_t size);

  /// Returns room for `size` bytes that ends, or else begins, at an inaccessible page.
  char* place(std::size_t size, bool atEnd) const { return atEnd ? begin_ + size_ - size : begin_; }

 private:
  std::size_t size_;
  char* begin_;
};

}  // namespace vel::test
