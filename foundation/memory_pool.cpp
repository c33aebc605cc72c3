// Implements memory pools: a singly linked list of blocks of equal size, with a bump pointer in the current
// one. allocate() in the header is the fast path and moves the pointer; this file adds, rewinds and frees
// blocks.
//
//   first_ -> [ full ] -> [ used | free ] -> [ kept by reset() ] -> null
//                         ^current_; free_ and end_ delimit what is left of it
#include <bit>
#include <cstdint>
#include <limits>
#include <memory>

#include "foundation/allocator.h"
#include "vel_include/vel_error.h"
#include "vel_include/vel_memmgr.h"

namespace {

constexpr const char* kBlockConstructor = "VelClMemoryPoolBlock::VelClMemoryPoolBlock";
constexpr const char* kConstructor = "VelClMemoryPool::VelClMemoryPool";
constexpr const char* kAllocate = "VelClMemoryPool::allocate";

[[noreturn]] void throwChunkTooBig(VelEnErrorClass errorClass, const char* origin, unsigned int line) {
  VelClException exception(MEMORYPOOL_CHUNK_TOO_BIG, errorClass, VelEnErrorSeverity::NORMAL,
                           VelEnErrorAction::USER, "");
  exception.setOrigin(origin, line);
  throw exception;
}

[[noreturn]] void throwCouldNotGrow(unsigned int line) {
  VelClExceptionFatal exception(MEMORYPOOL_COULD_NOT_GROW, VelEnErrorClass::OUT_OF_MEMORY,
                                VelEnErrorAction::TERMINATE, "");
  exception.setOrigin(kAllocate, line);
  throw exception;
}

constexpr size_t kMaxSize = std::numeric_limits<size_t>::max();

/// Returns the alignment; throws if it is not a power of two.
size_t checkedAlignment(size_t alignment, const char* origin, unsigned int line) {
  if (!std::has_single_bit(alignment)) throwChunkTooBig(VelEnErrorClass::INVALID_DATA, origin, line);
  return alignment;
}

/// Size plus alignment padding; SIZE_MAX on overflow, which no allocator can satisfy.
size_t paddedSize(size_t size, size_t alignment) {
  return size > kMaxSize - alignment ? kMaxSize : size + alignment;
}

/// Rounds up to a multiple of `alignment`; rounds down where rounding up would overflow.
size_t roundUp(size_t size, size_t alignment) {
  return (size > kMaxSize - alignment ? size : size + alignment - 1) & ~(alignment - 1);
}

}  // namespace

VelClMemoryPoolBlock::VelClMemoryPoolBlock(size_t size, size_t alignment)
    : owned_(VelClMemoryManager::malloc(
          paddedSize(size, checkedAlignment(alignment, kBlockConstructor, __LINE__)))),
      begin_(static_cast<char*>(owned_)),
      size_(size),
      next_(nullptr) {
  const size_t misalignment = reinterpret_cast<std::uintptr_t>(owned_) % alignment;
  if (misalignment != 0) begin_ += alignment - misalignment;
}

VelClMemoryPoolBlock::~VelClMemoryPoolBlock() {
  VelClMemoryManager::free(owned_);
}

VelClMemoryPool::VelClMemoryPool(size_t blockSize, size_t alignment)
    : blockSize_(blockSize),
      alignment_(alignment),
      free_(nullptr),
      end_(nullptr),
      first_(nullptr),
      current_(nullptr),
      blockCount_(0) {
  if (checkedAlignment(alignment, kConstructor, __LINE__) > kMaxAlignment)
    throwChunkTooBig(VelEnErrorClass::INVALID_DATA, kConstructor, __LINE__);
  blockSize_ = roundUp(blockSize, alignment);
}

VelClMemoryPool::~VelClMemoryPool() {
  clear();
}

/// Makes the next block current: one that reset() kept, or a new one at the end of the list. The rest of the
/// previous block stays unused. The list and the pointers change only after the allocation succeeded, so that
/// a failure leaves the pool as it was.
void VelClMemoryPool::openBlockFor(size_t size) {
  if (size > blockSize_) throwChunkTooBig(VelEnErrorClass::DATA_OUT_OF_BOUNDS, kAllocate, __LINE__);
  VelClMemoryPoolBlock*& next = current_ == nullptr ? first_ : current_->next_;
  if (next == nullptr) {
    try {
      next = vel::create<VelClMemoryPoolBlock>(blockSize_, alignment_);
    } catch (const VelClExceptionFatal&) {
      // Callers see the pool's own identifier; which of the block's two allocations failed does not matter.
      throwCouldNotGrow(__LINE__);
    }
    ++blockCount_;
  }
  current_ = next;
  free_ = current_->getBegin();
  end_ = current_->getEnd();
}

// Without a current block, the next allocation starts again at first_.
void VelClMemoryPool::reset() {
  current_ = nullptr;
  free_ = nullptr;
  end_ = nullptr;
}

void VelClMemoryPool::clear() {
  reset();
  while (first_ != nullptr) {
    VelClMemoryPoolBlock* const next = first_->next_;
    vel::destroy(first_);
    first_ = next;
  }
  blockCount_ = 0;
}
