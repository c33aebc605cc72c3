// Measures starting a program and waiting for its end: the processor time of both processes.
#include <benchmark/benchmark.h>

#include "bench/peer_time.h"
#include "bench/posix_peers.h"
#include "vel_include/vel_process.h"

namespace {

constexpr const char* kProgram = "/bin/true";

void launch(benchmark::State& state) {
  const VelClExeFile program{VelClFilename(kProgram)};
  bench::loopWithChildren(state, [&] {
    if (!VelClNewSyncProcess(program).launch()) state.SkipWithError("not launched");
  });
}
BENCHMARK(launch)->Name("launch/own")->UseManualTime();

void spawn(benchmark::State& state) {
  bench::loopWithChildren(state, [&] {
    if (!bench::spawnAndWait(kProgram)) state.SkipWithError("not launched");
  });
}
BENCHMARK(spawn)->Name("launch/posix_spawn")->UseManualTime();

}  // namespace
