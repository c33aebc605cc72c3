#include <atomic>

#include "trace/test/trace_fixture.h"

namespace {

using testing::Pair;
using testing::SizeIs;
using vel::test::SizedEntry;

constexpr std::size_t kRoom = 200;

/// A small ring, and the pieces that its overflow handler has received.
class TraceBufferManager : public vel::test::TraceTest {
 protected:
  static void keep(const _VelStTraceBufferCallBackInfo& info) {
    auto& calls = static_cast<TraceBufferManager*>(info.context)->calls_;
    calls.emplace_back(std::string(info.first, info.firstLength),
                       std::string(info.second, info.secondLength));
  }
  static void countOutside(const _VelStTraceBufferCallBackInfo& info) {
    auto& test = *static_cast<TraceBufferManager*>(info.context);
    const bool inside = info.first >= test.memory_ + 48 &&
                        info.first + info.firstLength <= std::end(test.memory_) && info.secondLength <= kRoom;
    if (!inside) ++test.outside_;
  }
  void attach() { manager_.attachOverflowHandler(&keep, this); }
  void write(std::size_t size) {
    const SizedEntry entry(*environment_, size, static_cast<char>('a' + count_++ % 26));
    manager_.write(entry.get());
    written_ += entry.bytes();
  }
  std::string handedOver() const {
    std::string all;
    for (const auto& [first, second] : calls_) all += first + second;
    return all;
  }

  std::unique_ptr<VelClTraceEnvironment> environment_ = environment();
  alignas(8) char memory_[48 + kRoom] = {};
  VelClTraceBufferManager manager_{*environment_, memory_, sizeof memory_};
  std::vector<std::pair<std::string, std::string>> calls_;
  std::string written_;
  int count_ = 0;
  std::atomic<int> outside_ = 0;
};

TEST_F(TraceBufferManager, HandsOverWhenAnEntryReachesTheEnd) {
  attach();
  EXPECT_EQ(manager_.getDataBufferSize(), kRoom);
  write(kRoom - 1);
  EXPECT_THAT(calls_, SizeIs(0));
  manager_.flush();
  manager_.flush();  // nothing was written since the first one
  write(30);         // one byte is left: the head wraps
  EXPECT_THAT(calls_, SizeIs(2));
  manager_.flush();
  write(kRoom - 29);  // exactly the room left: handed over inside the write, and once more, empty, by flush
  EXPECT_THAT(calls_, SizeIs(4));
  manager_.flush();
  // Intentional: after a wrap the save position is one past the end, so that the first piece is empty.
  EXPECT_THAT(calls_, testing::ElementsAre(Pair(SizeIs(kRoom - 1), ""), Pair(SizeIs(1), ""),
                                           Pair("", SizeIs(29)), Pair(SizeIs(kRoom - 29), ""), Pair("", "")));
  EXPECT_EQ(handedOver(), written_);
}

TEST_F(TraceBufferManager, HandsOverEveryByteInOrderForEntriesOfAnySize) {
  attach();
  std::mt19937 random(4711);
  for (int round = 0; round < 1000; ++round) {
    write(20 + random() % (round % 10 == 0 ? 3 * kRoom : kRoom + 1));
    if (random() % 7 == 0) manager_.flush();
    ASSERT_TRUE(written_.starts_with(handedOver())) << round;
  }
  manager_.flush();
  EXPECT_EQ(handedOver(), written_);
}

TEST_F(TraceBufferManager, KeepsTheNewestBytesWithoutAHandler) {
  for (const std::size_t rounds : {3U, 10U}) {
    for (std::size_t i = 0; i < rounds * kRoom / 50; ++i) write(50);
    write(77);
    attach();
    manager_.flush();
    // From the start of the ring, where the oldest byte need not be.
    EXPECT_EQ(calls_.back().first + calls_.back().second, written_.substr(written_.size() - 77));
    manager_.detachOverflowHandler();
  }
}

TEST_F(TraceBufferManager, ReserveRefusesBytesThatAreNotYetHandedOver) {
  EXPECT_EQ(manager_.reserve(1), nullptr) << "no handler is attached";
  attach();
  write(50);
  EXPECT_NE(manager_.reserve(kRoom - 51), nullptr);
  EXPECT_EQ(manager_.reserve(kRoom - 50), nullptr);
  manager_.flush();
  manager_.detachOverflowHandler();
  write(kRoom - 20);
  attach();
  EXPECT_EQ(manager_.reserve(1), nullptr) << "the bytes there have not been handed over";
}

TEST_F(TraceBufferManager, SecondManagerContinuesInTheSameRing) {
  write(60);
  VelClTraceBufferManager second(*environment_, memory_, sizeof memory_);
  second.attachOverflowHandler(&keep, this);
  second.flush();
  EXPECT_TRUE(calls_.empty()) << "the second manager has not written yet";
  second.write(SizedEntry(*environment_, 40, 'z').get());
  second.flush();
  EXPECT_EQ(handedOver().substr(0, 60), written_);
  EXPECT_EQ(handedOver().size(), 100U);
}

/// Threads without a lock can leave a write position beyond the end in the header.
TEST_F(TraceBufferManager, SurvivesAPositionBeyondTheEnd) {
  attach();
  write(50);
  constexpr std::size_t kWritePosition = 40;
  for (const std::size_t beyond : {2U, 30U}) {
    char* const position = memory_ + sizeof memory_ + beyond;
    std::memcpy(memory_ + kWritePosition, &position, sizeof position);
    EXPECT_EQ(manager_.reserve(1), nullptr);
    write(60);
    manager_.flush();
    for (const auto& [first, second] : calls_) EXPECT_LE(first.size() + second.size(), 2 * kRoom);
    const std::string all = handedOver();
    EXPECT_EQ(all.substr(all.size() - 60), written_.substr(written_.size() - 60));
  }
}

TEST_F(TraceBufferManager, KeepsThreadsInsideTheRing) {
  manager_.attachOverflowHandler(&countOutside, this);
  std::vector<std::thread> threads;
  for (std::size_t number = 0; number < 4; ++number)
    threads.emplace_back([this, number] {
      const SizedEntry entry(*environment_, 20 + 31 * number, 'x');
      for (int count = 0; count < 20'000; ++count) {
        constexpr std::size_t kSize = 40;
        unsigned char* const place = manager_.reserve(kSize);
        if (place == nullptr) {
          manager_.write(entry.get());
        } else {
          std::memset(place, 'y', kSize);
          if (count % 64 == 0) std::this_thread::yield();
          manager_.commit(kSize);
        }
      }
    });
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(outside_, 0);
}

struct AnyKey : VelClResourceKeyABase {
  explicit AnyKey(const char* type) : VelClResourceKeyABase(type, "key", nullptr) {}
};

TEST(ResourceKey, GetPartReturnsTheNameAfterATypeOfAnyLength) {
  EXPECT_STREQ(AnyKey(nullptr).getPart(), "key");
  EXPECT_STREQ(AnyKey(std::string(300, 't').c_str()).getPart(), "");
}

TEST(ResourceKey, BuildsTheNameFromKeyAndInstance) {
  const char* const rows[][3] = {{"trc", "VELTRACEINSTANCE0", "SEM32:trc:VELTRACEINSTANCE0"},
                                 {"a\\b c:", nullptr, "SEM32:a:bGc6"},
                                 {"\xFF", "", "SEM32:8:"},
                                 {nullptr, nullptr, "SEM32:"}};
  for (const auto& [key, instance, name] : rows)
    EXPECT_STREQ(VelClResourceKeySemaphore(key, instance).getAsCstring(), name);
  const std::string tooLong(300, 'x');
  VelClResourceKeySemaphore copy("other", "one");
  {
    const VelClResourceKeySemaphore original(tooLong.c_str(), "two");
    copy = original;
  }
  EXPECT_EQ(std::string(copy.getAsCstring()), "SEM32:" + std::string(249, 'x'));
  EXPECT_EQ(std::string(copy.getPart()), std::string(249, 'x'));
  const VelClResourceKeySemaphore again(copy);
  EXPECT_STREQ(again.getPart(), copy.getPart());
}

}  // namespace
