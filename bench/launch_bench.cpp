// Starting a program and waiting for its end. The time is that of both processes' work.
#include <benchmark/benchmark.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "bench/peer_time.h"
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
    char* const arguments[] = {const_cast<char*>(kProgram), nullptr};
    pid_t child = 0;
    int status = 0;
    if (posix_spawn(&child, kProgram, nullptr, nullptr, arguments, environ) != 0)
      state.SkipWithError("not launched");
    else
      waitpid(child, &status, 0);
  });
}
BENCHMARK(spawn)->Name("launch/posix_spawn")->UseManualTime();

}  // namespace
