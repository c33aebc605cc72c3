// One program of all benchmarks. They are named "job/peer" or "job/peer/argument"; our own peer is "own".
// What they are compared with and which ratios are wanted is written in goals.tsv.
#include <benchmark/benchmark.h>

BENCHMARK_MAIN();
