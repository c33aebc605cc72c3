#include "platform/test/guarded_memory.h"

#include <sys/mman.h>
#include <unistd.h>

#include <new>

namespace vel::test {

GuardedMemory::GuardedMemory(std::size_t size) {
  const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
  size_ = (size + page - 1) / page * page;
  void* const whole = mmap(nullptr, size_ + 2 * page, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  begin_ = static_cast<char*>(whole) + page;
  if (whole == MAP_FAILED || mprotect(begin_, size_, PROT_READ | PROT_WRITE) != 0) throw std::bad_alloc();
}

}  // namespace vel::test
