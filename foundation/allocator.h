// The rest of the library allocates through these forms of the memory manager: an allocator for standard
// containers, owning pointers, and a pair of functions for single objects.
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

/// A standard allocator, so that containers use the memory manager that the host program installed.
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

/// The deleter of memory that the manager allocated; runs no destructor.
struct FreeBlock {
  void operator()(void* block) const noexcept { VelClMemoryManager::free(block); }
};
/// Owns a NUL-terminated string.
using OwnedText = std::unique_ptr<char[], FreeBlock>;

/// Returns a NUL-terminated copy of the first `length` characters.
inline OwnedText copyText(const char* text, std::size_t length) {
  OwnedText copy(static_cast<char*>(VelClMemoryManager::malloc(length + 1)));
  std::memcpy(copy.get(), text, length);
  copy[length] = '\0';
  return copy;
}

/// Owns a block of memory without type.
using OwnedBlock = std::unique_ptr<void, FreeBlock>;

/// Constructs an object in managed memory; pass it to destroy(). If the constructor throws, the memory is
/// freed.
template <typename T, typename... Arguments>
T* create(Arguments&&... arguments) {
  OwnedBlock block(VelClMemoryManager::malloc(sizeof(T)));
  T* object = ::new (block.get()) T(std::forward<Arguments>(arguments)...);
  static_cast<void>(block.release());
  return object;
}

/// Destructs the object and frees its memory; null is ignored.
template <typename T>
void destroy(T* object) noexcept {
  if (object == nullptr) return;
  object->~T();
  VelClMemoryManager::free(object);
}

/// The deleter of objects that create() returned.
struct DestroyObject {
  template <typename T>
  void operator()(T* object) const noexcept {
    destroy(object);
  }
};
/// Owns an object that create() returned.
template <typename T>
using OwnedObject = std::unique_ptr<T, DestroyObject>;

}  // namespace vel
