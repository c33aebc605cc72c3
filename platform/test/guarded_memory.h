// Memory between two inaccessible pages: whoever reads or writes a byte too far ends there.
#pragma once

#include <cstddef>

namespace vel::test {

class GuardedMemory {
 public:
  /// At least `size` bytes, in whole pages.
  explicit GuardedMemory(std::size_t size);
  GuardedMemory(const GuardedMemory&) = delete;
  GuardedMemory& operator=(const GuardedMemory&) = delete;
  ~GuardedMemory();

  /// A place for `size` bytes that ends, or else begins, at an inaccessible page.
  char* place(std::size_t size, bool atEnd) const { return atEnd ? begin_ + size_ - size : begin_; }

 private:
  void* whole_;
  std::size_t wholeSize_;
  char* begin_;
  std::size_t size_;
};

}  // namespace vel::test
