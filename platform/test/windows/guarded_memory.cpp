#include "platform/test/guarded_memory.h"

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <new>

namespace vel::test {

GuardedMemory::GuardedMemory(std::size_t size) {
  SYSTEM_INFO system;
  GetSystemInfo(&system);
  const std::size_t page = system.dwPageSize;
  size_ = (size + page - 1) / page * page;
  wholeSize_ = size_ + 2 * page;
  whole_ = VirtualAlloc(nullptr, wholeSize_, MEM_RESERVE, PAGE_NOACCESS);
  if (whole_ == nullptr) throw std::bad_alloc();
  begin_ = static_cast<char*>(whole_) + page;
  if (VirtualAlloc(begin_, size_, MEM_COMMIT, PAGE_READWRITE) == nullptr) throw std::bad_alloc();
}

GuardedMemory::~GuardedMemory() {
  VirtualFree(whole_, 0, MEM_RELEASE);
}

}  // namespace vel::test
