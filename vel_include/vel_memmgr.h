// All heap memory that the library takes for itself goes through one process-wide manager,
// which a host program can redirect to its own allocator.
#ifndef VEL_MEMMGR_H_
#define VEL_MEMMGR_H_

#include <stddef.h>

#include "vel_export.h"

/// Returns a block of at least `size` bytes, aligned for any object, or null.
typedef void* (*VelAllocatorCallback)(size_t size);
/// Returns the block with its contents in the new size, or null.
typedef void* (*VelReallocatorCallback)(void* block, size_t size);
/// Takes a block back.
typedef void (*VelDeallocatorCallback)(void* block);

/// The operations of VelClMemoryManager under plain names. The first three never return
/// null: they throw a VelClExceptionFatal, which a program that is not written in C++
/// cannot catch.
VEL_C_API void* velMalloc(size_t size);
VEL_C_API void* velCalloc(size_t count, size_t size);
VEL_C_API void* velRealloc(void* block, size_t size);
VEL_C_API void velFree(void* block);
VEL_C_API void velSetNewMemoryManager(VelAllocatorCallback allocator, VelReallocatorCallback reallocator,
                                      VelDeallocatorCallback deallocator);

#if defined(VEL_HAS_CLASSES)

/// The process's memory manager. It starts with the runtime's malloc, realloc and free, which
/// are in place before any static initialiser runs.
/// A failed allocation throws VelClExceptionFatal: MEMMGR_ZERO_SIZE_OBJECT with class
/// INVALID_DATA when 0 bytes were asked for; otherwise class OUT_OF_MEMORY with
/// MEMMGR_USER_OUT_OF_MEMORY, or MEMMGR_RUNTIME_OUT_OF_MEMORY while the runtime's malloc is
/// installed. Nothing is logged and nothing is tried again.
/// There is no lock: install a manager once, before the library is used.
class VEL_API VelClMemoryManager {
 public:
  VelClMemoryManager() = delete;

  static void* malloc(size_t size);
  /// `count` times `size` zeroed bytes. The product wraps; callers keep it in range.
  static void* calloc(size_t count, size_t size);
  /// Throws MEMMGR_NO_USER_REALLOC_FUNC with action ABORT when the manager has no
  /// reallocation function. When the reallocation fails the old block stays valid, but for a
  /// size of 0: then the runtime frees it, and MEMMGR_ZERO_SIZE_OBJECT is thrown.
  static void* realloc(void* block, size_t size);
  /// Null is ignored.
  static void free(void* block);

  /// Installs other functions; `allocator` and `deallocator` must not be null. Without a
  /// `reallocator`, the runtime's malloc brings the runtime's realloc with it, and any other
  /// allocator cannot reallocate. Blocks taken before go to the new deallocator.
  static void setNewMemoryManager(VelAllocatorCallback allocator, VelReallocatorCallback reallocator,
                                  VelDeallocatorCallback deallocator);
  /// Whether an allocator other than the runtime's malloc is installed.
  static bool hasUserDefinedMgr();

 private:
  [[noreturn]] static void outOfMemory(const char* origin, int line, size_t size);

  static VelAllocatorCallback cv_pfuAllocatorCallback;
  static VelReallocatorCallback cv_pfuReallocatorCallback;
  static VelDeallocatorCallback cv_pfuDeallocatorCallback;
};

#endif

#endif
