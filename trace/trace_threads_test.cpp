// Traces from many threads at once and reads every record back. Which thread waits when differs from run to
// run; what the file must have does not.
#include <atomic>
#include <map>

#include "trace/test/trace_fixture.h"

namespace {

using Detail = VelEnTraceDetail;
using Type = VelEnTraceDataType;

/// What one thread has traced, as read from the file.
struct Found {
  std::uint32_t next = 0;  ///< the number that its next record must have
  std::int32_t level = 0;
};

class TraceThreads : public vel::test::TraceTest {
 protected:
  /// The data of a record: worker, number, and as many bytes made of both as the number says.
  static std::string dataOf(std::uint32_t worker, std::uint32_t number, std::size_t more) {
    std::string data(8 + more, static_cast<char>(worker * 31 + number));
    std::memcpy(data.data(), &worker, 4);
    std::memcpy(&data[4], &number, 4);
    return data;
  }
  static std::size_t sizeOf(std::uint32_t number) { return number % 500 == 499 ? 5000 : number % 90; }
  static void trace(std::uint32_t worker, std::uint32_t number) {
    const std::string text = "worker " + std::to_string(worker);
    const std::string data = dataOf(worker, number, sizeOf(number));
    velTraceDump(Detail::LOW, 1, Type::DATA, text.c_str(), "traced", data.data(), data.size());
  }
  /// Traces `count` records in each of the threads; every 16th one within a function.
  static void traceInThreads(std::uint32_t threads, std::uint32_t first, std::uint32_t count) {
    std::vector<std::thread> running;
    for (std::uint32_t worker = 0; worker < threads; ++worker)
      running.emplace_back([worker, first, count] {
        for (std::uint32_t number = first; number < first + count; ++number) {
          if (number % 16 == 0) {
            const VelClTraceFunction function(Detail::LOW, 1, "function");
            const VelClTraceFunction inner(Detail::LOW, 1, "inner");
            trace(worker, number);
          } else {
            trace(worker, number);
          }
          if (number % 100 == 0) std::this_thread::yield();
        }
      });
    for (std::thread& thread : running) thread.join();
  }
  /// Reads all records; checks that each is whole, and that each worker's numbers and each thread's levels
  /// are in order. Returns the number of records per worker.
  std::vector<std::uint32_t> readBack(std::uint32_t workers) const {
    std::istringstream stream(saved());
    const auto reader = environment(true);
    std::vector<std::uint32_t> numbers(workers);
    std::map<unsigned int, std::int32_t> levels;
    for (VelClTraceFileEntry entry(*reader); entry.read(stream);) {
      std::string data(entry.getDumpDataLength(), '\0');
      stream.read(data.data(), static_cast<std::streamsize>(data.size()));
      if (entry.getType() != Type::DATA) {
        std::int32_t level = 0;
        if (data.size() != sizeof level) return {};
        std::memcpy(&level, data.data(), sizeof level);
        std::int32_t& expected = levels[entry.getThreadId()];
        expected += entry.getType() == Type::FUNCTION_ENTRY ? 1 : -1;
        EXPECT_EQ(level, expected) << "thread " << entry.getThreadId();
        continue;
      }
      std::uint32_t worker = workers;
      if (data.size() >= 8) std::memcpy(&worker, data.data(), 4);
      if (worker >= workers) {
        ADD_FAILURE() << "no record at " << stream.tellg();
        return {};
      }
      const std::uint32_t number = numbers[worker]++;
      EXPECT_EQ(entry.getOrigin(), "worker " + std::to_string(worker));
      if (data != dataOf(worker, number, sizeOf(number))) {
        std::uint32_t found = 0;
        std::memcpy(&found, &data[4], sizeof found);
        ADD_FAILURE() << "worker " << worker << ": record " << found << " of " << data.size()
                      << " bytes instead of " << number << "; lost bytes " << velTraceGetLostBytes();
        return {};
      }
    }
    EXPECT_EQ(velTraceGetLostBytes(), 0U);
    return numbers;
  }
};

TEST_F(TraceThreads, EveryRecordOfEveryThreadIsInTheFile) {
  start({{"BUFSIZE", "8"}});
  constexpr std::uint32_t kThreads = 64;
  constexpr std::uint32_t kRecords = 300;
  trace(kThreads, 0);  // this thread has the ring
  // The second round uses what the threads of the first one have left.
  traceInThreads(kThreads, 0, kRecords);
  traceInThreads(kThreads, kRecords, kRecords);
  trace(kThreads, 1);
  velTraceDeleteInstance();
  std::vector<std::uint32_t> expected(kThreads, 2 * kRecords);
  expected.push_back(2);
  EXPECT_EQ(readBack(kThreads + 1), expected);
}

TEST_F(TraceThreads, FlushingAndSwitchingDoNotDisturbThem) {
  VelClTraceInstance* const instance = start({{"BUFSIZE", "8"}});
  std::atomic<bool> done = false;
  std::thread other([&] {
    while (!done) {
      velTraceFlush();
      instance->disable();  // what a thread is about to trace is still recorded
      instance->enable();
      std::this_thread::yield();
    }
  });
  constexpr std::uint32_t kThreads = 4;
  std::vector<std::thread> running;
  for (std::uint32_t worker = 0; worker < kThreads; ++worker)
    running.emplace_back([worker, instance] {
      for (std::uint32_t number = 0; number < 2000; ++number) {
        const std::string data = dataOf(worker, number, sizeOf(number));
        instance->dump(Detail::LOW, 1, Type::DATA, ("worker " + std::to_string(worker)).c_str(), "",
                       data.data(), data.size());
      }
    });
  for (std::thread& thread : running) thread.join();
  done = true;
  other.join();
  velTraceDeleteInstance();
  EXPECT_EQ(readBack(kThreads), std::vector<std::uint32_t>(kThreads, 2000));
}

/// A thread that ends leaves the ring, too, to the next one, with a nesting level of 0.
TEST_F(TraceThreads, ThreadsThatEndLeaveTheirRings) {
  start();
  std::set<unsigned int> threads;
  for (int round = 0; round < 20; ++round)
    std::thread([] { velTraceDump(Detail::LOW, 1, Type::FUNCTION_ENTRY, "f", "", nullptr, 0); }).join();
  velTraceDeleteInstance();
  std::string expected;
  for (int round = 0; round < 20; ++round)
    expected += line("f", Detail::OFF, Type::FUNCTION_ENTRY, std::string_view("\1\0\0\0", 4));
  EXPECT_EQ(entries(), expected);
}

/// An overflow of one environment may lead to a trace call: verbose mode writes to a stream of the program.
class TracingStream : public std::stringbuf {
 public:
  int sync() override { return 0; }
  std::streamsize xsputn(const char* text, std::streamsize size) override {
    velTraceDump(Detail::LOW, 1, Type::DATA_NONE, "stream", "", "", 0);
    return std::stringbuf::xsputn(text, size);
  }
};

TEST_F(TraceThreads, TracingWhileSavingIsCountedAsLost) {
  start({{"VERBOSE", "no"}})->getEnvironment().getSettings().enableVerbose(true);
  velTraceDump(Detail::LOW, 1, Type::DATA_NONE, "first", "", "", 0);
  TracingStream stream;
  std::streambuf* const before = std::cout.rdbuf(&stream);
  velTraceFlush();
  std::thread([] { velTraceFlush(); }).join();
  std::cout.rdbuf(before);
  velTraceDeleteInstance();
  EXPECT_THAT(entries(), testing::StartsWith(line("first", Detail::LOW, Type::DATA_NONE)));
}

}  // namespace
