// Memory pools and their blocks. The fast path is in the header.
#include <bit>
#include <cstdint>
#include <limits>
#include <memory>

#include "foundation/allocator.h"
#include "vel_include/vel_error.h"
#include "vel_include/vel_memmgr.h"

namespace {

constexpr const char* kConstructor = "VelClMemoryPool::VelClMemoryPool";
constexpr const char* kAllocate = "VelClMemoryPool::allocate";

[[noreturn]] void throwTooBig(VelEnErrorClass errorClass, const char* origin, unsigned int line) {
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

/// With what it takes to begin at a multiple of the alignment; a size that cannot be had when there is none.
size_t sizeToOwn(size_t size, size_t alignment) {
  constexpr size_t kMost = std::numeric_limits<size_t>::max();
  return size > kMost - alignment ? kMost : size + alignment;
}

}  // namespace

VelClMemoryPoolBlock::VelClMemoryPoolBlock(size_t size, size_t alignment)
    : size_(size),
      used_(0),
      owned_(VelClMemoryManager::malloc(sizeToOwn(size, alignment))),
      memory_(static_cast<char*>(owned_)),
      next_(nullptr) {
  const size_t beyond = reinterpret_cast<std::uintptr_t>(owned_) % alignment;
  if (beyond != 0) memory_ += alignment - beyond;
}

VelClMemoryPoolBlock::~VelClMemoryPoolBlock() {
  VelClMemoryManager::free(owned_);
}

VelClMemoryPool::VelClMemoryPool(size_t blockSize, size_t alignment)
    : blockSize_(blockSize), alignment_(alignment), first_(nullptr), current_(nullptr), blockCount_(0) {
  if (!std::has_single_bit(alignment) || alignment > kMaxAlignment)
    throwTooBig(VelEnErrorClass::INVALID_DATA, kConstructor, __LINE__);
}

VelClMemoryPool::~VelClMemoryPool() {
  clear();
}

void* VelClMemoryPool::allocateElsewhere(size_t size, size_t alignment) {
  if (size > blockSize_ || alignment > alignment_)
    throwTooBig(VelEnErrorClass::DATA_OUT_OF_BOUNDS, kAllocate, __LINE__);
  grow();
  return current_->allocate(size, alignment);
}

/// Moves on to a block that reset kept, or takes a new one.
void VelClMemoryPool::grow() {
  VelClMemoryPoolBlock*& next = current_ == nullptr ? first_ : current_->next_;
  if (next == nullptr) {
    try {
      next = vel::create<VelClMemoryPoolBlock>(blockSize_, alignment_);
    } catch (const VelClExceptionFatal&) {
      throwCouldNotGrow(__LINE__);
    }
    ++blockCount_;
  }
  next->reset();
  current_ = next;
}

void VelClMemoryPool::reset() {
  current_ = nullptr;
}

void VelClMemoryPool::clear() {
  while (first_ != nullptr) {
    VelClMemoryPoolBlock* const next = first_->next_;
    vel::destroy(first_);
    first_ = next;
  }
  current_ = nullptr;
  blockCount_ = 0;
}
