// The manager's replacement and its failures.
#include "vel_include/vel_memmgr.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <string>
#include <tuple>

#include "vel_include/vel_error.h"

namespace {

size_t lastSize = 0;
int freed = 0;

void* countingMalloc(size_t size) {
  lastSize = size;
  void* block = std::malloc(size + 1);
  std::memset(block, 0xAA, size + 1);
  return block;
}
void* refusingMalloc(size_t size) {
  lastSize = size;
  return nullptr;
}
void* refusingRealloc(void*, size_t) {
  return nullptr;
}
void countingFree(void* block) {
  ++freed;
  std::free(block);
}

/// Puts the runtime's functions back at the end of a test.
class MemoryManager : public testing::Test {
 protected:
  void TearDown() override { velSetNewMemoryManager(std::malloc, nullptr, std::free); }
};

using Failure = std::tuple<unsigned long, VelEnErrorClass, VelEnErrorAction, std::string, unsigned int>;

template <typename Call>
Failure failureOf(Call call) {
  try {
    call();
  } catch (const VelClExceptionFatal& e) {
    EXPECT_STREQ(e.getCause(), "");
    return {e.getId(), e.getClass(), e.getAction(), e.getOrigin(), e.getLine()};
  }
  return {};
}

constexpr const char* kHeader = "vel_include\\vel_memmgr.h:359";
constexpr auto kTerminate = VelEnErrorAction::TERMINATE;

TEST_F(MemoryManager, StartsWithTheRuntimeAndReturnsToIt) {
  EXPECT_FALSE(VelClMemoryManager::hasUserDefinedMgr());
  velSetNewMemoryManager(countingMalloc, nullptr, countingFree);
  EXPECT_TRUE(VelClMemoryManager::hasUserDefinedMgr());
  // The program's own address of malloc must be recognised, whatever thunk it is called through.
  velSetNewMemoryManager(std::malloc, nullptr, std::free);
  EXPECT_FALSE(VelClMemoryManager::hasUserDefinedMgr());
  void* block = velRealloc(velMalloc(1), 100);
  EXPECT_NE(block, nullptr);
  velFree(block);
}

TEST_F(MemoryManager, CallocAsksTheAllocatorForTheProductAndZeroesIt) {
  velSetNewMemoryManager(countingMalloc, nullptr, countingFree);
  auto* block = static_cast<unsigned char*>(velCalloc(3, 5));
  EXPECT_EQ(lastSize, 15U);
  for (int i = 0; i < 15; ++i) EXPECT_EQ(block[i], 0) << i;
  EXPECT_EQ(block[15], 0xAA);
  freed = 0;
  velFree(block);
  velFree(nullptr);
  EXPECT_EQ(freed, 1);
}

TEST_F(MemoryManager, ReportsFailuresWithTheirOrigin) {
  velSetNewMemoryManager(refusingMalloc, refusingRealloc, countingFree);
  const Failure exhausted{MEMMGR_USER_OUT_OF_MEMORY, VelEnErrorClass::OUT_OF_MEMORY, kTerminate, kHeader,
                          359};
  const Failure zero{MEMMGR_ZERO_SIZE_OBJECT, VelEnErrorClass::INVALID_DATA, kTerminate, kHeader, 359};
  EXPECT_EQ(failureOf([] { velMalloc(8); }), exhausted);
  EXPECT_EQ(failureOf([] { velCalloc(2, 4); }), exhausted);
  EXPECT_EQ(failureOf([] { velMalloc(0); }), zero);
  // A product that wraps to 0 counts as a request of 0 bytes.
  EXPECT_EQ(failureOf([] { velCalloc(size_t{1} << 63, 2); }), zero);
  EXPECT_EQ(failureOf([] { velRealloc(nullptr, 9); }),
            (Failure{MEMMGR_USER_OUT_OF_MEMORY, VelEnErrorClass::OUT_OF_MEMORY, kTerminate,
                     "VelClMemoryManager::realloc, line 277", 277}));
}

TEST_F(MemoryManager, ReallocFailsWithoutAFunctionAndNamesTheManagerByItsAllocator) {
  velSetNewMemoryManager(countingMalloc, nullptr, countingFree);
  const Failure expected{MEMMGR_NO_USER_REALLOC_FUNC, VelEnErrorClass::FUNCTION_NOT_SUPPORTED,
                         VelEnErrorAction::ABORT, "VelClMemoryManager::realloc, line 267", 267};
  for (const size_t size : {0U, 10U}) EXPECT_EQ(failureOf([size] { velRealloc(nullptr, size); }), expected);
  velSetNewMemoryManager(std::malloc, refusingRealloc, std::free);
  EXPECT_EQ(std::get<0>(failureOf([] { velRealloc(nullptr, 9); })), MEMMGR_RUNTIME_OUT_OF_MEMORY);
  // Size 0 frees the block and returns null in both runtimes.
  velSetNewMemoryManager(std::malloc, nullptr, std::free);
  EXPECT_EQ(std::get<0>(failureOf([] { velRealloc(velMalloc(4), 0); })), MEMMGR_ZERO_SIZE_OBJECT);
}

}  // namespace
