// A memory manager for tests: it tracks live blocks, notices writes past their ends, and can run out of
// memory.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <set>

#include "vel_include/vel_memmgr.h"

namespace vel::test {

/// The library allocates from this object until its end. Only one may exist at a time.
class WatchedMemory {
 public:
  WatchedMemory() {
    current_ = this;
    velSetNewMemoryManager(allocate, nullptr, release);
  }
  WatchedMemory(const WatchedMemory&) = delete;
  WatchedMemory& operator=(const WatchedMemory&) = delete;
  ~WatchedMemory() { velSetNewMemoryManager(std::malloc, nullptr, std::free); }

  std::set<void*> live;
  int allocations = 0;        ///< the number so far
  std::size_t lastSize = 0;   ///< of the last one
  int failsFrom = 0;          ///< the number of the first allocation that fails, 0 for none
  bool onlyOneFails = false;  ///< later allocations succeed

 private:
  /// The size of a block is before it, and one unwritten byte after it. Blocks are aligned for any object,
  /// but seldom for more.
  static constexpr std::size_t kShift = 16;
  static constexpr char kUnwritten = '\xAA';

  static void* allocate(std::size_t size) { return current_->newBlock(size); }
  static void release(void* block) {
    EXPECT_EQ(current_->live.erase(block), 1U) << "freed twice, or never allocated";
    char* const whole = static_cast<char*>(block) - kShift;
    std::size_t size = 0;
    std::memcpy(&size, whole, sizeof size);
    EXPECT_EQ(whole[kShift + size], kUnwritten) << "written after the end";
    std::free(whole);
  }

  void* newBlock(std::size_t size) {
    const int number = ++allocations;
    lastSize = size;
    const bool fails = failsFrom > 0 && (onlyOneFails ? number == failsFrom : number >= failsFrom);
    if (fails || size > std::size_t{1} << 40) return nullptr;
    char* const whole = static_cast<char*>(std::malloc(kShift + size + 1));
    std::memset(whole, kUnwritten, kShift + size + 1);
    std::memcpy(whole, &size, sizeof size);
    return *live.insert(whole + kShift).first;
  }

  inline static WatchedMemory* current_ = nullptr;
};

}  // namespace vel::test
