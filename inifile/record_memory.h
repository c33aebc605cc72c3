// Memory for the many small records of a model: pieces of growing blocks from the memory manager. Pieces
// given back are used again for others of their size.
#pragma once

#include <array>
#include <cstddef>

namespace vel::inifile {

class RecordMemory {
 public:
  /// Sizes are counted in units of this many bytes, which is the alignment, too.
  static constexpr std::size_t kUnit = 8;
  static constexpr std::size_t kMostUnits = 160;

  static constexpr std::size_t unitsFor(std::size_t size) noexcept { return (size + kUnit - 1) / kUnit; }

  RecordMemory() noexcept = default;
  RecordMemory(const RecordMemory&) = delete;
  RecordMemory& operator=(const RecordMemory&) = delete;
  ~RecordMemory();

  /// Not initialised; 1 to kMostUnits. Throws as the memory manager does.
  void* take(std::size_t units);
  void giveBack(void* piece, std::size_t units) noexcept;

 private:
  struct Piece {
    Piece* next;
  };

  void openBlock();

  Piece* blocks_ = nullptr;
  char* free_ = nullptr;
  char* end_ = nullptr;
  std::size_t blockSize_ = 2048;
  std::array<Piece*, kMostUnits + 1> givenBack_{};
};

}  // namespace vel::inifile
