// Measures formatting an entry of a trace file in the default format (function, message of 40 characters, 16
// bytes of data), compared with a formatting library that gets the entry's fields as arguments.
#include <benchmark/benchmark.h>
#include <spdlog/fmt/fmt.h>

#include <fstream>
#include <iterator>
#include <memory>
#include <ostream>
#include <streambuf>
#include <vector>

#include "vel_include/vel_filesys.h"
#include "vel_include/vel_process.h"
#include "vel_include/vel_trace.h"
#include "vel_include/vel_trace_reader.h"
#include "vel_include/vel_util.h"

namespace {

constexpr int kEntries = 10000;
/// For jobs that take so little time per entry that opening the file would count.
constexpr int kManyEntries = 400000;
constexpr const char* kMessage = "connection accepted from the other party";
constexpr const char* kOrigin = "acceptConnection";
constexpr char kData[] = "sixteen bytes...";
constexpr std::size_t kDataSize = 16;

/// A stream buffer that discards its output.
class Sink : public std::streambuf {
 protected:
  std::streamsize xsputn(const char* text, std::streamsize size) override {
    benchmark::DoNotOptimize(text);
    return size;
  }
  int_type overflow(int_type c) override { return traits_type::not_eof(c); }
};

class TraceFile {
 public:
  explicit TraceFile(bool compress, int entries = kEntries) : file_(nullptr, "bench") {
    const VelClEnvironmentVariable name("BENCH_TRACE_FILE", file_.getAsCString());
    environment_ = std::make_unique<VelClTraceEnvironment>("bench", nullptr, false);
    environment_->getSettings().enableCompression(compress);
    for (int i = 0; i < entries; ++i)
      environment_->add({*environment_, VelEnTraceDetail::LOW, 7, VelEnTraceDataType::DATA, kOrigin, kMessage,
                         kData, kDataSize});
    environment_->flush();
  }
  ~TraceFile() { VelClFile(file_, nullptr).remove(); }

  const VelClTraceEnvironment& environment() const { return *environment_; }

 private:
  VelClTmpFilename file_;
  std::unique_ptr<VelClTraceEnvironment> environment_;
};

void formatFile(benchmark::State& state) {
  const TraceFile file(state.range(0) != 0);
  VelClTraceFormatter formatter(file.environment(), nullptr);
  Sink sink;
  std::ostream stream(&sink);
  for ([[maybe_unused]] auto round : state) formatter.format(stream);
  state.SetItemsProcessed(state.iterations() * formatter.getNumOfEntries());
}
BENCHMARK(formatFile)->Name("trace format/own")->Arg(0)->Arg(1);

/// Reads the records as text is made of them: the texts are decoded.
void readFile(benchmark::State& state) {
  const TraceFile file(state.range(0) != 0);
  std::int64_t records = 0;
  for ([[maybe_unused]] auto round : state) {
    VelClTraceReader reader;
    if (!reader.open(file.environment().getFilename().getAsCString()).isOk())
      state.SkipWithError("not opened");
    for (const VelStTraceRecord& record : reader) {
      benchmark::DoNotOptimize(record.data);
      benchmark::DoNotOptimize(reader.getFunction().data());
      benchmark::DoNotOptimize(reader.getMessage().data());
      ++records;
    }
  }
  state.SetItemsProcessed(records);
}
BENCHMARK(readFile)->Name("trace read/own")->Arg(0)->Arg(1);

/// Passes over all records.
void filterFile(benchmark::State& state) {
  const TraceFile file(true, kManyEntries);
  const VelStTraceSelection nothing{};
  for ([[maybe_unused]] auto round : state) {
    VelClTraceReader reader;
    if (!reader.open(file.environment().getFilename().getAsCString()).isOk())
      state.SkipWithError("not opened");
    reader.select(&nothing);
    if (reader.next()) state.SkipWithError("a record was found");
  }
}
BENCHMARK(filterFile)->Name("trace filter/own");

/// Reads the bytes of the file, in blocks of the size that the reader uses.
void readBytes(benchmark::State& state) {
  const TraceFile file(true, kManyEntries);
  std::vector<char> block(std::size_t{256} * 1024);
  for ([[maybe_unused]] auto round : state) {
    std::ifstream stream;
    stream.rdbuf()->pubsetbuf(nullptr, 0);
    stream.open(file.environment().getFilename().getAsCString(), std::ios::binary);
    while (stream.read(block.data(), static_cast<std::streamsize>(block.size())))
      benchmark::DoNotOptimize(block[0]);
  }
}
BENCHMARK(readBytes)->Name("trace filter/read");

/// This peer does not read a file.
void formatWithLibrary(benchmark::State& state) {
  fmt::memory_buffer text;
  unsigned int process = 4711;
  unsigned int time = 123456789;
  for ([[maybe_unused]] auto round : state) {
    for (int i = 0; i < kEntries; ++i) {
      benchmark::DoNotOptimize(process);
      benchmark::DoNotOptimize(time);
      const VelClStrepHexDump line(0, kData, kDataSize);
      text.clear();
      fmt::format_to(std::back_inserter(text),
                     "{}\n   P: {}, T: {}, D: {}, C: {}\n   Data: {} ({} ({} {}): \n{}\n\n)", kOrigin,
                     process, time, "LOW", 7, kMessage, "DA", kDataSize, "Bytes", line.getAsCString());
      benchmark::DoNotOptimize(text.data());
    }
  }
  state.SetItemsProcessed(state.iterations() * kEntries);
}
BENCHMARK(formatWithLibrary)->Name("trace format/fmt");

}  // namespace
