// Runs all benchmarks. They are named "job/peer" or "job/peer/argument"; the peer "own" is this library.
// goals.tsv lists the peers that each is compared with, and the ratios to reach.
#include <benchmark/benchmark.h>

BENCHMARK_MAIN();
