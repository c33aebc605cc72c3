// The memory manager in the forms that the rest of the library allocates through: a standard
// allocator, owning pointers, and objects made in managed memory.
#pragma once

#include <cstddef>
#include <cstring>
#include <memory>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "vel_include/vel_memmgr.h"

namespace vel {

/// Lets standard containers obey the host's memory manager.
template <typename T>
struct Allocator {
  using value_type = T;

  Allocator() noexcept = default;
  template <typename U>
  Allocator(const Allocator<U>&) noexcept {}

  T* allocate(std::size_t count) {
    if (count > static_cast<std::size_t>(-1) / sizeof(T)) throw std::bad_array_new_length();
    return static_cast<T*>(VelClMemoryManager::malloc(count * sizeof(T)));
  }
  void deallocate(T* block, std::size_t) noexcept { VelClMemoryManager::free(block); }

  template <typename U>
  bool operator==(const Allocator<U>&) const noexcept {
    return true;
  }
};

using String = std::basic_string<char, std::char_traits<char>, Allocator<char>>;
template <typename T>
using Vector = std::vector<T, Allocator<T>>;

struct FreeBlock {
  void operator()(void* block) const noexcept { VelClMemoryManager::free(block); }
};
/// Owns a terminated text.
using OwnedText = std::unique_ptr<char[], FreeBlock>;

/// A copy of the first `length` characters, terminated.
inline OwnedText copyText(const char* text, std::size_t length) {
  OwnedText copy(static_cast<char*>(VelClMemoryManager::malloc(length + 1)));
  std::memcpy(copy.get(), text, length);
  copy[length] = '\0';
  return copy;
}

/// A block that goes back to the memory manager unless it is released.
using OwnedBlock = std::unique_ptr<void, FreeBlock>;

/// Makes an object in managed memory; destroy takes it back.
template <typename T, typename... Arguments>
T* create(Arguments&&... arguments) {
  OwnedBlock block(VelClMemoryManager::malloc(sizeof(T)));
  T* object = ::new (block.get()) T(std::forward<Arguments>(arguments)...);
  static_cast<void>(block.release());
  return object;
}

template <typename T>
void destroy(T* object) noexcept {
  if (object == nullptr) return;
  object->~T();
  VelClMemoryManager::free(object);
}

struct DestroyObject {
  template <typename T>
  void operator()(T* object) const noexcept {
    destroy(object);
  }
};
/// Owns what create made.
template <typename T>
using OwnedObject = std::unique_ptr<T, DestroyObject>;

}  // namespace vel
