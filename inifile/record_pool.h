// A memory pool for the many small records of a model. Blocks are cut from chunks of the memory manager, and
// a freed block is used again for the next one of its size. The chunks are freed with the pool.
#pragma once

#include <array>
#include <cstddef>

namespace vel::inifile {

class RecordPool {
 public:
  /// Sizes are counted in units of this many bytes, which is also the alignment.
  static constexpr std::size_t kUnit = 8;
  /// The largest block. An option with a full text needs 130 units.
  static constexpr std::size_t kMaxUnits = 160;

  static constexpr std::size_t unitsFor(std::size_t size) noexcept { return (size + kUnit - 1) / kUnit; }

  RecordPool() noexcept = default;
  RecordPool(const RecordPool&) = delete;
  RecordPool& operator=(const RecordPool&) = delete;
  ~RecordPool();

  /// Returns an uninitialised block of 1 to kMaxUnits units. Throws as the memory manager does.
  void* allocate(std::size_t units);
  /// `units` must be what the block was allocated with.
  void deallocate(void* block, std::size_t units) noexcept;

 private:
  struct Link {
    Link* next;
  };

  void addChunk();

  Link* chunks_ = nullptr;
  char* free_ = nullptr;
  char* end_ = nullptr;
  std::size_t chunkSize_ = 2048;
  std::array<Link*, kMaxUnits + 1> freeLists_{};
};

}  // namespace vel::inifile
