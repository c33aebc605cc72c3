// All heap memory that the library takes for itself goes through one process-wide manager,
// which a host program can redirect to its own allocator. Pools serve programs that need very
// many small pieces of memory and give them back all at once.
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

  /// `size` bytes, not initialised.
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

/// One block of a memory pool: memory from the manager with an alignment of its own.
class VEL_API VelClMemoryPoolBlock {
 public:
  /// `size` bytes that begin at a multiple of `alignment`. Throws as the manager does, and
  /// MEMORYPOOL_CHUNK_TOO_BIG with class INVALID_DATA for an alignment that is no power of two.
  VelClMemoryPoolBlock(size_t size, size_t alignment);
  VelClMemoryPoolBlock(const VelClMemoryPoolBlock&) = delete;
  VelClMemoryPoolBlock& operator=(const VelClMemoryPoolBlock&) = delete;
  ~VelClMemoryPoolBlock();

  /// The first byte, aligned, and the one behind the last.
  char* getBegin() const { return begin_; }
  char* getEnd() const { return begin_ + size_; }

 private:
  friend class VelClMemoryPool;

  void* owned_;
  char* begin_;  ///< the first aligned byte of `owned_`
  size_t size_;
  VelClMemoryPoolBlock* next_;
};

/// Memory for many small objects that die together. An allocation moves a pointer within the current block: a
/// handful of instructions, no header, and no gap beyond the alignment. Single pieces cannot be given back,
/// and destructors are not run. What is left of a block when a request does not fit stays unused until
/// reset. There is no lock.
///
///   VelClMemoryPool pool(64 * 1024);
///   Node* node = new (pool.allocate(sizeof(Node))) Node();
///   pool.reset();
class VEL_API VelClMemoryPool {
 public:
  /// In bytes; suits any object.
  static constexpr size_t kDefaultAlignment = 16;
  /// In bytes: a page of memory.
  static constexpr size_t kMaxAlignment = 4096;

  /// Takes no memory yet. `blockSize` is in bytes, rounded up to a multiple of `alignment`, and the most that
  /// one request can ask for; a block costs about `alignment` + 32 bytes besides. An alignment that is no
  /// power of two, or above kMaxAlignment, throws MEMORYPOOL_CHUNK_TOO_BIG with class INVALID_DATA. For texts
  /// take 1.
  explicit VelClMemoryPool(size_t blockSize, size_t alignment = kDefaultAlignment);
  VelClMemoryPool(const VelClMemoryPool&) = delete;
  VelClMemoryPool& operator=(const VelClMemoryPool&) = delete;
  ~VelClMemoryPool();

  /// `size` bytes, not initialised, at a multiple of the pool's alignment; every request, also one for 0
  /// bytes, gets an address of its own. A failure leaves the pool as it was and throws:
  /// MEMORYPOOL_CHUNK_TOO_BIG with class DATA_OUT_OF_BOUNDS (VelClException) for more than a block holds;
  /// MEMORYPOOL_COULD_NOT_GROW with class OUT_OF_MEMORY (VelClExceptionFatal) when there is no memory for
  /// another block.
  void* allocate(size_t size) {
    const size_t wanted = size == 0 ? 1 : size;
    if (wanted > static_cast<size_t>(end_ - free_)) openBlockFor(wanted);
    char* const piece = free_;
    free_ += (wanted + alignment_ - 1) & ~(alignment_ - 1);
    return piece;
  }

  /// All pieces are free again, in a constant time; the blocks stay for what is asked for next.
  void reset();
  /// All pieces are free again, and the blocks go back to the memory manager.
  void clear();

  /// In bytes, rounded up.
  size_t getBlockSize() const { return blockSize_; }
  /// In bytes.
  size_t getAlignment() const { return alignment_; }
  /// How many blocks the pool holds, those kept by reset included.
  size_t getNumOfBlocks() const { return blockCount_; }

 private:
  void openBlockFor(size_t size);

  size_t blockSize_;
  size_t alignment_;
  char* free_;  ///< both in the current block, and their distance a multiple of the alignment
  char* end_;
  VelClMemoryPoolBlock* first_;
  VelClMemoryPoolBlock* current_;  ///< those behind it are unused
  size_t blockCount_;
};

#endif

#endif
