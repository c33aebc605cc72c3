// A pointer for each thread, in the fiber-local storage of Windows, which calls back when a thread ends.
#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include "platform/thread_value.h"

namespace vel::platform {

ThreadValue::ThreadValue(void (*ended)(void*)) noexcept
    : key_(FlsAlloc(ended)), exists_(key_ != FLS_OUT_OF_INDEXES) {}

ThreadValue::~ThreadValue() {
  if (exists_) FlsFree(key_);
}

// Both functions also set the last error when they succeed.

void* ThreadValue::get() const noexcept {
  if (!exists_) return nullptr;
  const DWORD error = GetLastError();
  void* const value = FlsGetValue(key_);
  SetLastError(error);
  return value;
}

bool ThreadValue::set(void* value) const noexcept {
  if (!exists_) return false;
  const DWORD error = GetLastError();
  const bool done = FlsSetValue(key_, value) != FALSE;
  SetLastError(error);
  return done;
}

}  // namespace vel::platform
