// Allocates records from chunks, since a file may have very many options: one call of the memory manager
// serves hundreds of them, and one call frees them. Each block size has a list of its free blocks; the links
// are in the freed blocks themselves:
//
//   chunks_ -> [link|block|block|free.........]     free_ and end_ limit the unused end of the newest chunk
//   freeLists_[5] -> block -> block -> null         blocks of 5 units
#include "inifile/record_pool.h"

#include <algorithm>

#include "vel_include/vel_memmgr.h"

namespace vel::inifile {

namespace {

/// Chunks double up to this size: small files need little memory, large ones few calls.
constexpr std::size_t kMaxChunkSize = std::size_t{64} * 1024;
/// Room for the link to the next chunk, rounded up so that blocks keep the alignment of the chunk.
constexpr std::size_t kChunkHeader = 16;

}  // namespace

RecordPool::~RecordPool() {
  while (chunks_ != nullptr) {
    Link* const next = chunks_->next;
    VelClMemoryManager::free(chunks_);
    chunks_ = next;
  }
}

/// The unused end of the chunk before is abandoned. It was too small for the wanted block, so at most one
/// block of the largest size is wasted per chunk.
void RecordPool::addChunk() {
  auto* const chunk = static_cast<Link*>(VelClMemoryManager::malloc(chunkSize_));
  chunk->next = chunks_;
  chunks_ = chunk;
  free_ = reinterpret_cast<char*>(chunk) + kChunkHeader;
  end_ = reinterpret_cast<char*>(chunk) + chunkSize_;
  chunkSize_ = std::min(chunkSize_ * 2, kMaxChunkSize);
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
