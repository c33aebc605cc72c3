// Tests memory pools: the placement of pieces, reset and clear, and refused requests.
#include <limits>

#include "platform/test/test.h"
#include "platform/test/thrown.h"
#include "platform/test/watched_memory.h"
#include "vel_include/vel_memmgr.h"

namespace {

class MemoryPool : public testing::Test {
 protected:
  void TearDown() override { EXPECT_TRUE(memory_.live.empty()); }

  vel::test::WatchedMemory memory_;
};

using vel::test::thrown;

const std::string kTooBig = "1000802 203 5 5 , VelClMemoryPool::allocate";
const std::string kCouldNotGrow = "1000801 200 6 6 , VelClMemoryPool::allocate";
const std::string kInvalid = "1000802 202 5 5 , VelClMemoryPool";
constexpr size_t kMax = std::numeric_limits<size_t>::max();

TEST_F(MemoryPool, PiecesAreAlignedAndDoNotOverlap) {
  for (const size_t alignment : {1U, 2U, 16U, 64U, 4096U}) {
    VelClMemoryPool pool(5000, alignment);
    std::map<char*, std::string> pieces;
    for (size_t i = 0; i < 600; ++i) {
      const std::string bytes(i * i % 97, static_cast<char>(i % 251));
      auto* const piece = static_cast<char*>(pool.allocate(bytes.size()));
      EXPECT_EQ(reinterpret_cast<std::uintptr_t>(piece) % alignment, 0U);
      bytes.copy(piece, bytes.size());
      EXPECT_TRUE(pieces.emplace(piece, bytes).second);
    }
    for (const auto& [piece, bytes] : pieces) EXPECT_EQ(std::string(piece, bytes.size()), bytes) << alignment;
  }
}

TEST_F(MemoryPool, ABlockIsFilledToItsLastByte) {
  VelClMemoryPool pool(61, 16);
  EXPECT_EQ(std::tuple(pool.getBlockSize(), pool.getNumOfBlocks()), std::tuple(64U, 0U));
  const char* const first = static_cast<char*>(pool.allocate(30));
  EXPECT_EQ(static_cast<char*>(pool.allocate(0)), first + 32);
  EXPECT_EQ(static_cast<char*>(pool.allocate(16)), first + 48);
  EXPECT_EQ(pool.getNumOfBlocks(), 1U);
  pool.allocate(0);
  EXPECT_EQ(pool.getNumOfBlocks(), 2U);
  pool.allocate(64);
  EXPECT_EQ(pool.getNumOfBlocks(), 3U);
  VelClMemoryPool texts(3, 1);
  const char* const text = static_cast<char*>(texts.allocate(2));
  EXPECT_EQ(static_cast<char*>(texts.allocate(1)), text + 2);
  texts.allocate(1);
  EXPECT_EQ(texts.getNumOfBlocks(), 2U);
}

TEST_F(MemoryPool, ResetKeepsTheBlocksAndClearFreesThem) {
  VelClMemoryPool pool(1000, 8);
  const auto fill = [&pool] {
    std::vector<void*> pieces(10);
    for (void*& piece : pieces) piece = pool.allocate(400);
    return pieces;
  };
  const std::vector<void*> first = fill();
  const auto blocks = memory_.live;
  EXPECT_EQ(pool.getNumOfBlocks(), 5U);
  for (int round = 0; round < 3; ++round) {
    pool.reset();
    EXPECT_EQ(fill(), first) << round;
    EXPECT_EQ(memory_.live, blocks);
  }
  pool.clear();
  EXPECT_TRUE(memory_.live.empty());
  EXPECT_EQ(pool.getNumOfBlocks(), 0U);
  EXPECT_NE(pool.allocate(1), nullptr);
}

TEST_F(MemoryPool, RefusesSizesThatNoBlockHolds) {
  VelClMemoryPool pool(100, 8);
  const auto* const before = static_cast<char*>(pool.allocate(8));
  for (const size_t size : {size_t{105}, kMax - 7, kMax})
    EXPECT_EQ(thrown([&] { pool.allocate(size); }), kTooBig) << size;
  EXPECT_EQ(static_cast<char*>(pool.allocate(96)), before + 8);
  EXPECT_EQ(pool.getNumOfBlocks(), 1U);
  EXPECT_EQ(thrown([] { const VelClMemoryPoolBlock odd(64, 0); }), kInvalid + "Block::VelClMemoryPoolBlock");
  VelClMemoryPool none(0);
  EXPECT_EQ(thrown([&] { none.allocate(0); }), kTooBig);
  for (const size_t alignment : {size_t{0}, size_t{3}, size_t{24}, size_t{8192}, kMax})
    EXPECT_EQ(thrown([&] { const VelClMemoryPool odd(100, alignment); }), kInvalid + "::VelClMemoryPool")
        << alignment;
}

TEST_F(MemoryPool, IsUnchangedWhenItCannotGrow) {
  VelClMemoryPool pool(64);
  char* const first = static_cast<char*>(pool.allocate(16));
  // A new block needs two allocations; each of them fails once.
  for (int number = 1; number <= 2; ++number) {
    const auto before = memory_.live;
    memory_.failsFrom = memory_.allocations + number;
    EXPECT_EQ(thrown([&] { pool.allocate(64); }), kCouldNotGrow);
    EXPECT_EQ(memory_.live, before);
    EXPECT_EQ(pool.getNumOfBlocks(), 1U);
  }
  EXPECT_EQ(static_cast<char*>(pool.allocate(16)), first + 16);
  memory_.failsFrom = 0;
  EXPECT_NE(pool.allocate(64), nullptr);
  VelClMemoryPool endless(kMax);
  EXPECT_EQ(thrown([&] { endless.allocate(1); }), kCouldNotGrow);
}

}  // namespace
