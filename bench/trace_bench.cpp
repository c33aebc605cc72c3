// Measures tracing an event, a message of 40 characters with a function's name and 16 bytes of data, compared
// with logging it. spdlog appends the bytes to the message unchanged: formatting them as text would be much
// slower.
#include <benchmark/benchmark.h>
#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/sinks/ringbuffer_sink.h>
#include <spdlog/spdlog.h>

#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>

#include "vel_include/vel_process.h"
#include "vel_include/vel_trace.h"

namespace {

constexpr const char* kMessage = "connection accepted from the other party";
constexpr const char* kFunction = "acceptConnection";
constexpr unsigned char kData[16] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16};

std::string scratchFile(const char* name) {
  return (std::filesystem::temp_directory_path() / name).string();
}

/// A trace instance with the key BENCH for one measurement.
class Trace {
 public:
  Trace(bool active, bool compress, const char* file) : file_(file) {
    VelClEnvironmentVariable("BENCH_TRACE_ACTIVE", active ? "yes" : "no");
    VelClEnvironmentVariable("BENCH_TRACE_FILE", file);
    VelClTraceInstance* const instance = VelClTraceInstance::createInstance("bench", nullptr);
    instance->getEnvironment().getSettings().enableCompression(compress);
  }
  Trace(const Trace&) = delete;
  Trace& operator=(const Trace&) = delete;
  ~Trace() {
    VelClTraceInstance::deleteInstance();
    std::remove(file_);
  }

  static void event() {
    if (VelClTraceInstance* const instance = VelClTraceInstance::getInstance())
      instance->dump(VelEnTraceDetail::LOW, 3, VelEnTraceDataType::DATA, kFunction, kMessage, kData,
                     sizeof kData);
  }

 private:
  const char* file_;
};

void loopOverEvents(benchmark::State& state) {
  for ([[maybe_unused]] auto round : state) {
    Trace::event();
    benchmark::ClobberMemory();
  }
}

void traceOff(benchmark::State& state) {
  const Trace trace(false, true, "");
  loopOverEvents(state);
}
BENCHMARK(traceOff)->Name("trace off/own");

/// The minimum cost of a disabled trace: a load and a branch.
void loadAndBranch(benchmark::State& state) {
  static int* volatile enabled = nullptr;
  for ([[maybe_unused]] auto round : state) {
    if (enabled != nullptr) *enabled = 1;
    benchmark::ClobberMemory();
  }
}
BENCHMARK(loadAndBranch)->Name("trace off/load and branch");

void traceToRing(benchmark::State& state) {
  const Trace trace(true, state.range(0) != 0, "");
  VelClTraceInstance::getInstance()->getEnvironment().setFilename("/dev/null");
  loopOverEvents(state);
}
BENCHMARK(traceToRing)->Name("trace to ring/own")->Arg(0)->Arg(1);

void traceToFile(benchmark::State& state) {
  const std::string file = scratchFile("bench.trc");
  const Trace trace(true, true, file.c_str());
  loopOverEvents(state);
}
BENCHMARK(traceToFile)->Name("trace to file/own");

void logEvents(benchmark::State& state, const spdlog::sink_ptr& sink) {
  spdlog::logger logger("bench", sink);
  logger.set_pattern("%P %t %E %l %! %v");
  const spdlog::string_view_t bytes(reinterpret_cast<const char*>(kData), sizeof kData);
  for ([[maybe_unused]] auto round : state) {
    logger.log(spdlog::source_loc{kFunction, 1, kFunction}, spdlog::level::info, "{}{}", kMessage, bytes);
    benchmark::ClobberMemory();
  }
}

void spdlogOff(benchmark::State& state) {
  spdlog::logger logger("bench", std::make_shared<spdlog::sinks::ringbuffer_sink_st>(1024));
  logger.set_level(spdlog::level::off);
  for ([[maybe_unused]] auto round : state) {
    logger.info(kMessage);
    benchmark::ClobberMemory();
  }
}
BENCHMARK(spdlogOff)->Name("trace off/spdlog");

void spdlogToRing(benchmark::State& state) {
  logEvents(state, std::make_shared<spdlog::sinks::ringbuffer_sink_st>(1024));
}
BENCHMARK(spdlogToRing)->Name("trace to ring/spdlog");

void spdlogToFile(benchmark::State& state) {
  const std::string file = scratchFile("bench.log");
  logEvents(state, std::make_shared<spdlog::sinks::basic_file_sink_st>(file, true));
  std::remove(file.c_str());
}
BENCHMARK(spdlogToFile)->Name("trace to file/spdlog");

}  // namespace
