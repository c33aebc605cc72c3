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
  auto* const whole = static_cast<char*>(VirtualAlloc(nullptr, size_ + 2 * page, MEM_RESERVE, PAGE_NOACCESS));
  begin_ = whole + page;
  if (VirtualAlloc(begin_, size_, MEM_COMMIT, PAGE_READWRITE) == nullptr) throw std::bad_alloc();
}

}  // namespace vel::test
