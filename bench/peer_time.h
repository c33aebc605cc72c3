// What peers need that are programs of their own, or that judge texts by the locale.
#pragma once

#include <benchmark/benchmark.h>

#include <clocale>

#include "bench/posix_peers.h"

namespace bench {

/// Measures a job that children do a part of; the benchmark needs UseManualTime.
template <typename Work>
void loopWithChildren(benchmark::State& state, Work work) {
  for ([[maybe_unused]] auto round : state) {
    const double start = processorTime();
    work();
    state.SetIterationTime(processorTime() - start);
  }
}

/// The user's locale as long as it lives, and "C" before and afterwards.
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
