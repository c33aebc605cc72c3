// The process's memory manager and its plain functions.
#include "vel_include/vel_memmgr.h"

#include <cstdlib>
#include <cstring>

#include "platform/system.h"
#include "vel_include/vel_error.h"

// Fixed texts and numbers: part of the interface, not these lines' positions.
namespace {
constexpr const char* kAllocationOrigin = "vel_include\\vel_memmgr.h:359";
constexpr int kAllocationLine = 359;
constexpr const char* kNoReallocatorOrigin = "VelClMemoryManager::realloc, line 267";
constexpr int kNoReallocatorLine = 267;
constexpr const char* kReallocationOrigin = "VelClMemoryManager::realloc, line 277";
constexpr int kReallocationLine = 277;

/// The same function has different addresses in a program and in a DLL when each calls it through
/// an import thunk of its own.
bool isRuntimeMalloc(VelAllocatorCallback allocator) noexcept {
  if (allocator == &std::malloc) return true;
  return vel::platform::resolveImportThunk(reinterpret_cast<const void*>(allocator)) ==
         vel::platform::resolveImportThunk(reinterpret_cast<const void*>(&std::malloc));
}
}  // namespace

constinit VelAllocatorCallback VelClMemoryManager::cv_pfuAllocatorCallback = &std::malloc;
constinit VelReallocatorCallback VelClMemoryManager::cv_pfuReallocatorCallback = &std::realloc;
constinit VelDeallocatorCallback VelClMemoryManager::cv_pfuDeallocatorCallback = &std::free;

void* VelClMemoryManager::malloc(size_t size) {
  void* block = cv_pfuAllocatorCallback(size);
  if (block == nullptr) outOfMemory(kAllocationOrigin, kAllocationLine, size);
  return block;
}

void* VelClMemoryManager::calloc(size_t count, size_t size) {
  // The product wraps and the platform's calloc is never used: the allocator sees one size. Keep.
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
  // The runtime frees the block and returns null for size 0: reported like any other failure. Keep.
  if (moved == nullptr) outOfMemory(kReallocationOrigin, kReallocationLine, size);
  return moved;
}

void VelClMemoryManager::free(void* block) {
  if (block != nullptr) cv_pfuDeallocatorCallback(block);
}

void VelClMemoryManager::setNewMemoryManager(VelAllocatorCallback allocator,
                                             VelReallocatorCallback reallocator,
                                             VelDeallocatorCallback deallocator) {
  cv_pfuAllocatorCallback = allocator;
  cv_pfuDeallocatorCallback = deallocator;
  cv_pfuReallocatorCallback =
      reallocator == nullptr && isRuntimeMalloc(allocator) ? &std::realloc : reallocator;
}

bool VelClMemoryManager::hasUserDefinedMgr() {
  return !isRuntimeMalloc(cv_pfuAllocatorCallback);
}

void VelClMemoryManager::outOfMemory(const char* origin, int line, size_t size) {
  // The allocator decides also when it was the reallocation that failed. Keep.
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
