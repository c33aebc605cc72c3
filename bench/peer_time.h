// What peers need that are programs of their own, or that judge texts by the locale.
#pragma once

#include <benchmark/benchmark.h>
#include <sys/resource.h>

#include <clocale>
#include <cstdlib>

namespace bench {

/// Processor time in seconds of this process and of the children that it has waited for: unlike the clock's
/// it does not tell what else the machine was doing.
inline double processorTime() {
  double seconds = 0;
  for (const int who : {RUSAGE_SELF, RUSAGE_CHILDREN}) {
    rusage usage{};
    getrusage(who, &usage);
    for (const timeval& time : {usage.ru_utime, usage.ru_stime})
      seconds += static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
  }
  return seconds;
}

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
    setenv("LC_ALL", name, 1);
    std::setlocale(LC_ALL, "");
  }
  UserLocale(const UserLocale&) = delete;
  UserLocale& operator=(const UserLocale&) = delete;
  ~UserLocale() {
    unsetenv("LC_ALL");
    std::setlocale(LC_ALL, "C");
  }
};

}  // namespace bench
