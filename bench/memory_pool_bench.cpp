// Measures many small allocations that are freed together: the memory pool, compared with the runtime's
// allocator.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <vector>

#include "vel_include/vel_memmgr.h"

namespace {

constexpr std::size_t kPieces = 10'000;
constexpr std::size_t kBlockSize = std::size_t{64} * 1024;

/// Sizes from 16 to 64 bytes, like those of tree nodes and short texts.
const std::vector<std::size_t>& sizes() {
  static const std::vector<std::size_t> all = [] {
    std::vector<std::size_t> made;
    for (std::size_t i = 0; i < kPieces; ++i) made.push_back(16 + i * 7919 % 49);
    return made;
  }();
  return all;
}

void countPieces(benchmark::State& state) {
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kPieces));
}

void runtimeAllocator(benchmark::State& state) {
  std::vector<void*> pieces(kPieces);
  for ([[maybe_unused]] auto round : state) {
    std::size_t i = 0;
    for (const std::size_t size : sizes()) {
      auto* const piece = static_cast<char*>(std::malloc(size));
      *piece = 'x';
      pieces[i++] = piece;
    }
    benchmark::ClobberMemory();
    for (void* const piece : pieces) std::free(piece);
  }
  countPieces(state);
}
BENCHMARK(runtimeAllocator)->Name("memory pool/malloc");

void memoryPool(benchmark::State& state) {
  VelClMemoryPool pool(kBlockSize);
  std::vector<void*> pieces(kPieces);
  for ([[maybe_unused]] auto round : state) {
    std::size_t i = 0;
    for (const std::size_t size : sizes()) {
      auto* const piece = static_cast<char*>(pool.allocate(size));
      *piece = 'x';
      pieces[i++] = piece;
    }
    benchmark::ClobberMemory();
    pool.reset();
  }
  countPieces(state);
}
BENCHMARK(memoryPool)->Name("memory pool/own");

}  // namespace
