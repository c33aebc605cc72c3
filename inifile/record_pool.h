// Memory for the many small records of a model: pieces of growing blocks from the memory manager. Pieces
// given back are used again for others of their size.
#pragma once

#include <array>
#include <cstddef>

namespace vel::inifile {

class RecordPool {
 public:
  /// Sizes are counted in units of this many bytes, which is the alignment, too.
  static constexpr std::size_t kUnit = 8;
  static constexpr std::size_t kMaxUnits = 160;

  static constexpr std::size_t unitsFor(std::size_t size) noexcept { return (size + kUnit - 1) / kUnit; }

  RecordPool() noexcept = default;
  RecordPool(const RecordPool&) = delete;
  RecordPool& operator=(const RecordPool&) = delete;
  ~RecordPool();

  /// Not initialised; 1 to kMaxUnits. Throws as the memory manager does.
  void* allocate(std::size_t units);
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
