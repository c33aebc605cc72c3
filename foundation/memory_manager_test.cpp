// Tests the replacement of the memory manager and the exceptions of its failures.
#include "vel_include/vel_memmgr.h"

#include "platform/test/test.h"
#include "platform/test/thrown.h"
#include "platform/test/watched_memory.h"

namespace {

/// An allocator other than the runtime's.
void* ownMalloc(size_t size) {
  return std::malloc(size);
}

/// Restores the runtime's functions after each test.
class MemoryManager : public testing::Test {
 protected:
  void TearDown() override { velSetNewMemoryManager(std::malloc, nullptr, std::free); }
};

TEST_F(MemoryManager, IsTheRuntimesUnlessReplaced) {
  EXPECT_FALSE(VelClMemoryManager::hasUserDefinedMgr());
  velSetNewMemoryManager(ownMalloc, nullptr, std::free);
  EXPECT_TRUE(VelClMemoryManager::hasUserDefinedMgr());
  // The address of malloc that the program sees may be a thunk's.
  velSetNewMemoryManager(std::malloc, nullptr, std::free);
  EXPECT_FALSE(VelClMemoryManager::hasUserDefinedMgr());
  velFree(velRealloc(velMalloc(1), 100));
}

TEST_F(MemoryManager, CallocAllocatesAndZeroesTheProduct) {
  const vel::test::WatchedMemory memory;
  auto* block = static_cast<unsigned char*>(velCalloc(3, 5));
  EXPECT_EQ(memory.lastSize, 15U);
  for (int i = 0; i < 15; ++i) EXPECT_EQ(block[i], 0) << i;
  EXPECT_EQ(block[15], 0xAA);
  velFree(block);
  velFree(nullptr);
  EXPECT_TRUE(memory.live.empty());
}

TEST_F(MemoryManager, FailuresTellTheirOrigin) {
  const auto refusingMalloc = [](size_t) -> void* { return nullptr; };
  const auto refusingRealloc = [](void*, size_t) -> void* { return nullptr; };
  const std::string atAllocator = " 6 6 , vel_include\\vel_memmgr.h:359";
  const std::string atNull = " 6 8 , VelClMemoryManager::realloc, line 267";
  const std::string atRealloc = " 6 6 , VelClMemoryManager::realloc, line 277";
  const std::tuple<VelAllocatorCallback, VelReallocatorCallback, void (*)(), std::string> rows[] = {
      {refusingMalloc, nullptr, [] { velMalloc(8); }, "1001001 200" + atAllocator},
      {refusingMalloc, nullptr, [] { velCalloc(2, 4); }, "1001001 200" + atAllocator},
      {refusingMalloc, nullptr, [] { velMalloc(0); }, "1001004 202" + atAllocator},
      // A product that wraps to 0 counts as a request of 0 bytes.
      {refusingMalloc, nullptr, [] { velCalloc(size_t{1} << 63, 2); }, "1001004 202" + atAllocator},
      {ownMalloc, nullptr, [] { velRealloc(nullptr, 0); }, "1001003 1" + atNull},
      {ownMalloc, nullptr, [] { velRealloc(nullptr, 10); }, "1001003 1" + atNull},
      // The identifier depends on the allocator alone, not on the reallocator.
      {ownMalloc, refusingRealloc, [] { velRealloc(nullptr, 9); }, "1001001 200" + atRealloc},
      {std::malloc, refusingRealloc, [] { velRealloc(nullptr, 9); }, "1001002 200" + atRealloc},
      // Size 0 frees the block and returns null in both runtimes.
      {std::malloc, nullptr, [] { velRealloc(velMalloc(4), 0); }, "1001004 202" + atRealloc},
  };
  for (const auto& [allocator, reallocator, call, failure] : rows) {
    velSetNewMemoryManager(allocator, reallocator, std::free);
    EXPECT_EQ(vel::test::thrown(call), failure);
  }
}

}  // namespace
