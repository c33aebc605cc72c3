#include "platform/test/guarded_memory.h"

#include <sys/mman.h>
#include <unistd.h>

#include <new>

namespace vel::test {

GuardedMemory::GuardedMemory(std::size_t size) {
  const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
  size_ = (size + page - 1) / page * page;
  wholeSize_ = size_ + 2 * page;
  whole_ = mmap(nullptr, wholeSize_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (whole_ == MAP_FAILED) throw std::bad_alloc();
  begin_ = static_cast<char*>(whole_) + page;
  if (mprotect(begin_, size_, PROT_READ | PROT_WRITE) != 0) throw std::bad_alloc();
}

GuardedMemory::~GuardedMemory() {
  munmap(whole_, wholeSize_);
}

}  // namespace vel::test
