// Support for peers that are separate programs, or that depend on the locale.
#pragma once

#include <benchmark/benchmark.h>

#include <clocale>

#include "bench/posix_peers.h"

namespace bench {

/// Measures a job that is partly done by child processes; the benchmark needs UseManualTime.
template <typename Work>
void loopWithChildren(benchmark::State& state, Work work) {
  for ([[maybe_unused]] auto round : state) {
    const double start = processorTime();
    work();
    state.SetIterationTime(processorTime() - start);
  }
}

/// Sets the user's locale for the lifetime of the object, and "C" again at its end.
class UserLocale {
 public:
  explicit UserLocale(const char* name) {
    setVariable("LC_ALL", name);
    std::setlocale(LC_ALL, "");
  }
  UserLocale(const UserLocale&) = delete;
  UserLocale& operator=(const UserLocale&) = delete;
  ~UserLocale() {
    setVariable("LC_ALL", nullptr);
    std::setlocale(LC_ALL, "C");
  }
};

}  // namespace bench
