// Measures random numbers, compared with a plain loop of the same algorithm, and the decimal text of numbers
// of all lengths.
#include <benchmark/benchmark.h>

#include <bit>
#include <charconv>
#include <cinttypes>
#include <cstdint>
#include <cstdio>
#include <random>
#include <vector>

#include "vel_include/vel_helpers.h"
#include "vel_include/vel_util.h"

namespace {

template <typename Next>
void draw(benchmark::State& state, Next next) {
  for ([[maybe_unused]] auto round : state) benchmark::DoNotOptimize(next());
}

void random(benchmark::State& state) {
  const VelClRandomNumberGenerator generator(4711);
  draw(state, [&] { return generator.getRandomNumber(); });
}
BENCHMARK(random)->Name("random/own");

/// IBAA as its author wrote it, returning its numbers one by one.
struct StraightLoop {
  std::uint32_t memory[256];
  std::uint32_t results[256];
  std::uint32_t a = 0, b = 0, left = 0;

  __attribute__((noinline)) void refill() {
    for (std::uint32_t i = 0; i < 256; ++i) {
      const std::uint32_t x = memory[i];
      a = std::rotl(a, 19) + memory[(i + 128) & 255];
      const std::uint32_t y = memory[i] = memory[x & 255] + a + b;
      results[i] = b = memory[y >> 8 & 255] + x;
    }
    left = 256;
  }
  std::uint32_t next() {
    if (left == 0) refill();
    return results[--left];
  }
};

void straightLoop(benchmark::State& state) {
  StraightLoop loop;
  std::mt19937 numbers(4711);
  for (std::uint32_t& word : loop.memory) word = static_cast<std::uint32_t>(numbers());
  draw(state, [&] { return loop.next(); });
}
BENCHMARK(straightLoop)->Name("random/straight loop");

void mersenne(benchmark::State& state) {
  std::mt19937 numbers(4711);
  draw(state, [&] { return numbers(); });
}
BENCHMARK(mersenne)->Name("random/mt19937");

/// Values of all lengths, equally often, half of them negative.
template <typename Number>
std::vector<Number> numbersOfAllLengths() {
  std::mt19937_64 random(4711);
  std::vector<Number> numbers(4096);
  for (Number& number : numbers) {
    const auto bits = static_cast<std::uint64_t>(random());
    number = static_cast<Number>(bits) >> random() % (8 * sizeof(Number) - 1);
  }
  return numbers;
}

template <typename Number, typename Write>
void writeAll(benchmark::State& state, Write write) {
  const std::vector<Number> numbers = numbersOfAllLengths<Number>();
  char text[32];
  std::size_t next = 0;
  for ([[maybe_unused]] auto round : state) {
    benchmark::DoNotOptimize(write(numbers[next], text));
    benchmark::ClobberMemory();
    if (++next == numbers.size()) next = 0;
  }
}

void decimal32(benchmark::State& state) {
  writeAll<std::int32_t>(state, velItoa);
}
BENCHMARK(decimal32)->Name("decimal 32/own");

void decimal64(benchmark::State& state) {
  writeAll<long long>(state, velI64toa);
}
BENCHMARK(decimal64)->Name("decimal 64/own");

/// Writes the terminating NUL as well, as the library's functions do.
template <typename Number>
void toChars(benchmark::State& state) {
  writeAll<Number>(state, [](Number number, char* out) {
    char* const end = std::to_chars(out, out + 31, number).ptr;
    *end = '\0';
    return end - out;
  });
}
BENCHMARK(toChars<std::int32_t>)->Name("decimal 32/to_chars");
BENCHMARK(toChars<long long>)->Name("decimal 64/to_chars");

void print32(benchmark::State& state) {
  writeAll<std::int32_t>(
      state, [](std::int32_t number, char* out) { return std::snprintf(out, 32, "%" PRId32, number); });
}
BENCHMARK(print32)->Name("decimal 32/snprintf");

void print64(benchmark::State& state) {
  writeAll<long long>(state,
                      [](long long number, char* out) { return std::snprintf(out, 32, "%lld", number); });
}
BENCHMARK(print64)->Name("decimal 64/snprintf");

}  // namespace
