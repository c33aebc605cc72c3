// A pointer for each thread, in the thread-specific data of POSIX.
#include "platform/thread_value.h"

#include <pthread.h>

namespace vel::platform {

static_assert(sizeof(pthread_key_t) <= sizeof(std::uint32_t));

ThreadValue::ThreadValue(void (*ended)(void*)) noexcept : key_(0), exists_(false) {
  pthread_key_t key = 0;
  exists_ = pthread_key_create(&key, ended) == 0;
  key_ = key;
}

ThreadValue::~ThreadValue() {
  if (exists_) pthread_key_delete(key_);
}

void* ThreadValue::get() const noexcept {
  return exists_ ? pthread_getspecific(key_) : nullptr;
}

bool ThreadValue::set(void* value) const noexcept {
  return exists_ && pthread_setspecific(key_, value) == 0;
}

}  // namespace vel::platform
