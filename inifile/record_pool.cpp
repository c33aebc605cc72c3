// Pieces of memory for the records of a model.
#include "inifile/record_pool.h"

#include <algorithm>

#include "vel_include/vel_memmgr.h"

namespace vel::inifile {

namespace {

constexpr std::size_t kLargestChunk = std::size_t{64} * 1024;
constexpr std::size_t kChunkHeader = 16;

}  // namespace

RecordPool::~RecordPool() {
  while (chunks_ != nullptr) {
    Link* const next = chunks_->next;
    VelClMemoryManager::free(chunks_);
    chunks_ = next;
  }
}

/// What is left of the block before stays unused: no more than the largest block.
void RecordPool::addChunk() {
  auto* const chunk = static_cast<Link*>(VelClMemoryManager::malloc(chunkSize_));
  chunk->next = chunks_;
  chunks_ = chunk;
  free_ = reinterpret_cast<char*>(chunk) + kChunkHeader;
  end_ = reinterpret_cast<char*>(chunk) + chunkSize_;
  chunkSize_ = std::min(chunkSize_ * 2, kLargestChunk);
}

void* RecordPool::allocate(std::size_t units) {
  if (Link* const block = freeLists_[units]; block != nullptr) {
    freeLists_[units] = block->next;
    return block;
  }
  const std::size_t size = units * kUnit;
  if (static_cast<std::size_t>(end_ - free_) < size) addChunk();
  char* const block = free_;
  free_ += size;
  return block;
}

void RecordPool::deallocate(void* block, std::size_t units) noexcept {
  auto* const link = static_cast<Link*>(block);
  link->next = freeLists_[units];
  freeLists_[units] = link;
}

}  // namespace vel::inifile
