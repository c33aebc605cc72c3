// Implements the process's memory manager, through which the library allocates, and the plain functions that
// wrap it. Containers and smart pointers over it are in allocator.h, pools in memory_pool.cpp.
#include "vel_include/vel_memmgr.h"

#include <cstdlib>
#include <cstring>

#include "platform/system.h"
#include "vel_include/vel_error.h"

// Intentional: origins and line numbers are fixed. Programs compare them, so they do not follow the lines
// that throw in this file.
namespace {
constexpr const char* kAllocationOrigin = "vel_include\\vel_memmgr.h:359";
constexpr int kAllocationLine = 359;
constexpr const char* kNoReallocatorOrigin = "VelClMemoryManager::realloc, line 267";
constexpr int kNoReallocatorLine = 267;
constexpr const char* kReallocationOrigin = "VelClMemoryManager::realloc, line 277";
constexpr int kReallocationLine = 277;

/// Whether the allocator is the runtime's malloc. On Windows a program and a DLL may each have an import
/// thunk (a jump to the real function) of their own, so that &malloc differs between them; both addresses are
/// followed to the function before they are compared.
bool isRuntimeMalloc(VelAllocatorCallback allocator) noexcept {
  if (allocator == &std::malloc) return true;
  return vel::platform::resolveImportThunk(reinterpret_cast<const void*>(allocator)) ==
         vel::platform::resolveImportThunk(reinterpret_cast<const void*>(&std::malloc));
}
}  // namespace

// constinit: static initialisers of other files, in any order, may allocate before this file's would run.
constinit VelAllocatorCallback VelClMemoryManager::cv_pfuAllocatorCallback = &std::malloc;
constinit VelReallocatorCallback VelClMemoryManager::cv_pfuReallocatorCallback = &std::realloc;
constinit VelDeallocatorCallback VelClMemoryManager::cv_pfuDeallocatorCallback = &std::free;

void* VelClMemoryManager::malloc(size_t size) {
  void* block = cv_pfuAllocatorCallback(size);
  if (block == nullptr) outOfMemory(kAllocationOrigin, kAllocationLine, size);
  return block;
}

void* VelClMemoryManager::calloc(size_t count, size_t size) {
  // Intentional: the product wraps, and the runtime's calloc is never used. A manager consists of three
  // functions, and its allocator gets a single size.
  const size_t product = count * size;
  return std::memset(malloc(product), 0, product);
}

void* VelClMemoryManager::realloc(void* block, size_t size) {
  if (cv_pfuReallocatorCallback == nullptr) {
    VelClExceptionFatal exception(MEMMGR_NO_USER_REALLOC_FUNC, VelEnErrorClass::FUNCTION_NOT_SUPPORTED,
                                  VelEnErrorAction::ABORT, "");
    exception.setOrigin(kNoReallocatorOrigin, kNoReallocatorLine);
    throw exception;
  }
  void* moved = cv_pfuReallocatorCallback(block, size);
  // Intentional: for size 0 the runtime's realloc frees the block and returns null, and callers get an
  // exception as for any other null. Only in that case the block is gone; otherwise it is still valid.
  if (moved == nullptr) outOfMemory(kReallocationOrigin, kReallocationLine, size);
  return moved;
}

// A deallocator need not accept null, so null never reaches it.
void VelClMemoryManager::free(void* block) {
  if (block != nullptr) cv_pfuDeallocatorCallback(block);
}

void VelClMemoryManager::setNewMemoryManager(VelAllocatorCallback allocator,
                                             VelReallocatorCallback reallocator,
                                             VelDeallocatorCallback deallocator) {
  cv_pfuAllocatorCallback = allocator;
  cv_pfuDeallocatorCallback = deallocator;
  // Only the runtime's realloc can resize what the runtime's malloc returned, so it may be left out for it.
  cv_pfuReallocatorCallback =
      reallocator == nullptr && isRuntimeMalloc(allocator) ? &std::realloc : reallocator;
}

bool VelClMemoryManager::hasUserDefinedMgr() {
  return !isRuntimeMalloc(cv_pfuAllocatorCallback);
}

void VelClMemoryManager::outOfMemory(const char* origin, int line, size_t size) {
  // Intentional: the identifier depends on whose allocator is installed, even if the reallocator failed: a
  // manager is installed as a whole.
  const unsigned long id = size == 0             ? MEMMGR_ZERO_SIZE_OBJECT
                           : hasUserDefinedMgr() ? MEMMGR_USER_OUT_OF_MEMORY
                                                 : MEMMGR_RUNTIME_OUT_OF_MEMORY;
  VelClExceptionFatal exception(id,
                                size == 0 ? VelEnErrorClass::INVALID_DATA : VelEnErrorClass::OUT_OF_MEMORY,
                                VelEnErrorAction::TERMINATE, "");
  exception.setOrigin(origin, static_cast<unsigned int>(line));
  throw exception;
}

void* velMalloc(size_t size) {
  return VelClMemoryManager::malloc(size);
}
void* velCalloc(size_t count, size_t size) {
  return VelClMemoryManager::calloc(count, size);
}
void* velRealloc(void* block, size_t size) {
  return VelClMemoryManager::realloc(block, size);
}
void velFree(void* block) {
  VelClMemoryManager::free(block);
}

void velSetNewMemoryManager(VelAllocatorCallback allocator, VelReallocatorCallback reallocator,
                            VelDeallocatorCallback deallocator) {
  VelClMemoryManager::setNewMemoryManager(allocator, reallocator, deallocator);
}
