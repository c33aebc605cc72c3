// Pieces of memory for the records of a model.
#include "inifile/record_memory.h"

#include <algorithm>

#include "vel_include/vel_memmgr.h"

namespace vel::inifile {

namespace {

constexpr std::size_t kLargestBlock = std::size_t{64} * 1024;
constexpr std::size_t kBlockHeader = 16;

}  // namespace

RecordMemory::~RecordMemory() {
  while (blocks_ != nullptr) {
    Piece* const next = blocks_->next;
    VelClMemoryManager::free(blocks_);
    blocks_ = next;
  }
}

/// What is left of the block before stays unused: no more than the largest piece.
void RecordMemory::openBlock() {
  auto* const block = static_cast<Piece*>(VelClMemoryManager::malloc(blockSize_));
  block->next = blocks_;
  blocks_ = block;
  free_ = reinterpret_cast<char*>(block) + kBlockHeader;
  end_ = reinterpret_cast<char*>(block) + blockSize_;
  blockSize_ = std::min(blockSize_ * 2, kLargestBlock);
}

void* RecordMemory::take(std::size_t units) {
  if (Piece* const piece = givenBack_[units]; piece != nullptr) {
    givenBack_[units] = piece->next;
    return piece;
  }
  const std::size_t size = units * kUnit;
  if (static_cast<std::size_t>(end_ - free_) < size) openBlock();
  char* const piece = free_;
  free_ += size;
  return piece;
}

void RecordMemory::giveBack(void* piece, std::size_t units) noexcept {
  auto* const freed = static_cast<Piece*>(piece);
  freed->next = givenBack_[units];
  givenBack_[units] = freed;
}

}  // namespace vel::inifile
