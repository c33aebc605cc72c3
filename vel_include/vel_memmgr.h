// Memory management. The library allocates all its heap memory through one process-wide manager, which a host
// program can redirect to its own allocator. Pools serve programs that need very many small pieces of memory
// and release them all together.
#ifndef VEL_MEMMGR_H_
#define VEL_MEMMGR_H_

#include <stddef.h>

#include "vel_export.h"

/// Allocates a block of at least `size` bytes, aligned for any object; returns null on failure.
typedef void* (*VelAllocatorCallback)(size_t size);
/// Resizes the block to `size` bytes, preserving its contents, and returns it; returns null on failure.
typedef void* (*VelReallocatorCallback)(void* block, size_t size);
/// Frees a block.
typedef void (*VelDeallocatorCallback)(void* block);

/// The operations of VelClMemoryManager as plain functions. The first three never return null: they throw a
/// VelClExceptionFatal, which a program not written in C++ cannot catch.
VEL_C_API void* velMalloc(size_t size);
VEL_C_API void* velCalloc(size_t count, size_t size);
VEL_C_API void* velRealloc(void* block, size_t size);
VEL_C_API void velFree(void* block);
VEL_C_API void velSetNewMemoryManager(VelAllocatorCallback allocator, VelReallocatorCallback reallocator,
                                      VelDeallocatorCallback deallocator);

#if defined(VEL_HAS_CLASSES)

/// The memory manager of the process. Initially it uses the runtime's malloc, realloc and free, which are in
/// place before any static initialiser runs.
/// A failed allocation throws VelClExceptionFatal: MEMMGR_ZERO_SIZE_OBJECT with class INVALID_DATA if 0 bytes
/// were requested; otherwise, with class OUT_OF_MEMORY, MEMMGR_RUNTIME_OUT_OF_MEMORY while the runtime's
/// malloc is installed and MEMMGR_USER_OUT_OF_MEMORY for any other allocator. Nothing is logged and nothing
/// is retried.
/// Installing is not thread-safe: install a manager once, before the library is used.
class VEL_API VelClMemoryManager {
 public:
  VelClMemoryManager() = delete;

  /// Allocates `size` uninitialised bytes.
  static void* malloc(size_t size);
  /// Allocates `count` times `size` zeroed bytes. The product is not checked for overflow: callers keep it in
  /// range.
  static void* calloc(size_t count, size_t size);
  /// Resizes a block. Throws MEMMGR_NO_USER_REALLOC_FUNC with action ABORT if a reallocation function is not
  /// installed. After a failure the old block remains valid, except for size 0: the runtime then frees the
  /// block, and MEMMGR_ZERO_SIZE_OBJECT is thrown.
  static void* realloc(void* block, size_t size);
  /// Frees a block; null is ignored.
  static void free(void* block);

  /// Installs other functions; `allocator` and `deallocator` must not be null. If `reallocator` is null, the
  /// runtime's malloc is paired with the runtime's realloc, and any other allocator cannot reallocate. Blocks
  /// allocated earlier are freed by the new deallocator.
  static void setNewMemoryManager(VelAllocatorCallback allocator, VelReallocatorCallback reallocator,
                                  VelDeallocatorCallback deallocator);
  /// True if an allocator other than the runtime's malloc is installed.
  static bool hasUserDefinedMgr();

 private:
  [[noreturn]] static void outOfMemory(const char* origin, int line, size_t size);

  static VelAllocatorCallback cv_pfuAllocatorCallback;
  static VelReallocatorCallback cv_pfuReallocatorCallback;
  static VelDeallocatorCallback cv_pfuDeallocatorCallback;
};

/// One block of a memory pool: memory from the manager with its own alignment.
class VEL_API VelClMemoryPoolBlock {
 public:
  /// Allocates `size` bytes that begin at a multiple of `alignment`. Throws as the manager does, and
  /// MEMORYPOOL_CHUNK_TOO_BIG with class INVALID_DATA if the alignment is not a power of two.
  VelClMemoryPoolBlock(size_t size, size_t alignment);
  VelClMemoryPoolBlock(const VelClMemoryPoolBlock&) = delete;
  VelClMemoryPoolBlock& operator=(const VelClMemoryPoolBlock&) = delete;
  ~VelClMemoryPoolBlock();

  /// Return the first byte, which is aligned, and the end: one byte past the last.
  char* getBegin() const { return begin_; }
  char* getEnd() const { return begin_ + size_; }

 private:
  friend class VelClMemoryPool;

  void* owned_;
  char* begin_;  ///< the first aligned byte of `owned_`
  size_t size_;
  VelClMemoryPoolBlock* next_;
};

/// Memory for many small objects with the same lifetime. An allocation advances a pointer within the current
/// block: it costs a handful of instructions, and objects are stored without headers, with gaps only for the
/// alignment. Single pieces cannot be freed, and destructors are not run. If a request does not fit, the rest
/// of the block remains unused until reset. Not thread-safe.
///
///   VelClMemoryPool pool(64 * 1024);
///   Node* node = new (pool.allocate(sizeof(Node))) Node();
///   pool.reset();
class VEL_API VelClMemoryPool {
 public:
  /// The default alignment in bytes; it suits any object.
  static constexpr size_t kDefaultAlignment = 16;
  /// The largest alignment in bytes: a page of memory.
  static constexpr size_t kMaxAlignment = 4096;

  /// Constructs a pool without allocating memory. `blockSize` is in bytes, is rounded up to a multiple of
  /// `alignment`, and is the largest size of a single request; each block costs about `alignment` + 32
  /// additional bytes. Throws MEMORYPOOL_CHUNK_TOO_BIG with class INVALID_DATA if the alignment is not a
  /// power of two, or exceeds kMaxAlignment. Use alignment 1 for texts.
  explicit VelClMemoryPool(size_t blockSize, size_t alignment = kDefaultAlignment);
  VelClMemoryPool(const VelClMemoryPool&) = delete;
  VelClMemoryPool& operator=(const VelClMemoryPool&) = delete;
  ~VelClMemoryPool();

  /// Allocates `size` uninitialised bytes at a multiple of the pool's alignment; every request, even one for
  /// 0 bytes, gets a distinct address. A failure leaves the pool unchanged and throws
  /// MEMORYPOOL_CHUNK_TOO_BIG with class DATA_OUT_OF_BOUNDS (VelClException) if the size exceeds that of a
  /// block, or MEMORYPOOL_COULD_NOT_GROW with class OUT_OF_MEMORY (VelClExceptionFatal) if memory for another
  /// block cannot be allocated.
  void* allocate(size_t size) {
    const size_t wanted = size == 0 ? 1 : size;
    if (wanted > static_cast<size_t>(end_ - free_)) openBlockFor(wanted);
    char* const piece = free_;
    free_ += (wanted + alignment_ - 1) & ~(alignment_ - 1);
    return piece;
  }

  /// Frees all pieces in constant time; the blocks are kept for later requests.
  void reset();
  /// Frees all pieces and returns the blocks to the memory manager.
  void clear();

  /// Returns the block size in bytes, rounded up as at construction.
  size_t getBlockSize() const { return blockSize_; }
  /// Returns the alignment in bytes.
  size_t getAlignment() const { return alignment_; }
  /// Returns how many blocks the pool holds, including those kept by reset.
  size_t getNumOfBlocks() const { return blockCount_; }

 private:
  void openBlockFor(size_t size);

  size_t blockSize_;
  size_t alignment_;
  char* free_;  ///< free_ and end_ are in the current block, a multiple of the alignment apart
  char* end_;
  VelClMemoryPoolBlock* first_;
  VelClMemoryPoolBlock* current_;  ///< the blocks after it are unused
  size_t blockCount_;
};

#endif

#endif
