// Measures finding a text of 16 letters at the end of a megabyte of words, and matching names against
// wildcards.
#include <benchmark/benchmark.h>
#include <fnmatch.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <iterator>
#include <string>

#include "bench/sample_text.h"
#include "vel_include/vel_helpers.h"
#include "vel_include/vel_util.h"

namespace {

constexpr const char* kPattern = "conversion table";
constexpr const char* kOtherCase = "Conversion TABLE";

const std::string& words() {
  static const std::string all = [] {
    std::string made;
    for (const char16_t unit : bench::makeText(bench::kScripts[0], 1 << 20)) made += static_cast<char>(unit);
    return made + kPattern;
  }();
  return all;
}

template <typename Find>
void search(benchmark::State& state, Find find) {
  const std::string& text = words();
  const char* const expected = text.data() + text.size() - std::strlen(kPattern);
  for ([[maybe_unused]] auto round : state)
    if (find(text) != expected) state.SkipWithError("not found");
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}

void find(benchmark::State& state) {
  search(state, [](const std::string& text) { return velStrFind(text.c_str(), kPattern, false); });
}
BENCHMARK(find)->Name("search/own");

void searchObject(benchmark::State& state) {
  const VelClStringSearch object(kPattern, false);
  search(state, [&](const std::string& text) { return object.getPattern(text.c_str()); });
}
BENCHMARK(searchObject)->Name("search/own object");

void horspool(benchmark::State& state) {
  const std::boyer_moore_horspool_searcher searcher(kPattern, kPattern + std::strlen(kPattern));
  search(state, [&](const std::string& text) { return &*std::search(text.begin(), text.end(), searcher); });
}
BENCHMARK(horspool)->Name("search/horspool");

void memmemory(benchmark::State& state) {
  search(state, [](const std::string& text) {
    return memmem(text.data(), text.size(), kPattern, std::strlen(kPattern));
  });
}
BENCHMARK(memmemory)->Name("search/memmem");

/// Does the minimum of every search: determines the text's length and compares every byte with one.
void twoPasses(benchmark::State& state) {
  search(state, [](const std::string& text) -> const char* {
    benchmark::DoNotOptimize(std::strlen(text.c_str()));
    if (std::memchr(text.data(), '\1', text.size()) != nullptr) return nullptr;
    return text.data() + text.size() - std::strlen(kPattern);
  });
}
BENCHMARK(twoPasses)->Name("search/strlen and memchr");

void findIgnoringCase(benchmark::State& state) {
  search(state, [](const std::string& text) { return velStrFind(text.c_str(), kOtherCase, true); });
}
BENCHMARK(findIgnoringCase)->Name("search nocase/own");

void searchObjectIgnoringCase(benchmark::State& state) {
  const VelClStringSearch object(kOtherCase, true);
  search(state, [&](const std::string& text) { return object.getPattern(text.c_str()); });
}
BENCHMARK(searchObjectIgnoringCase)->Name("search nocase/own object");

void caseStr(benchmark::State& state) {
  search(state, [](const std::string& text) { return strcasestr(text.c_str(), kOtherCase); });
}
BENCHMARK(caseStr)->Name("search nocase/strcasestr");

struct WildcardJob {
  const char* pattern;
  std::vector<std::string> names;
};

const WildcardJob& wildcardJob(const benchmark::State& state) {
  static const WildcardJob jobs[] = {
      {"*.cpp", {"wildcard_pattern.cpp", "vel_util.h", "CMakeLists.txt", "string_search_test.cpp"}},
      {"string_*", {"string_search.cpp", "wildcard_pattern.cpp", "string_match.cpp", "dump.cpp"}},
      {"*a*a*a*a*b", {std::string(64, 'a')}},
      {"*a*a*a*a*b", {std::string(1024, 'a')}}};
  return jobs[state.range(0)];
}

template <typename Match>
void matchAll(benchmark::State& state, Match match) {
  const WildcardJob& job = wildcardJob(state);
  std::size_t next = 0;
  for ([[maybe_unused]] auto round : state) {
    benchmark::DoNotOptimize(match(job.pattern, job.names[next].c_str()));
    if (++next == job.names.size()) next = 0;
  }
}

void wildcards(benchmark::State& state) {
  matchAll(state, [](const char* pattern, const char* name) {
    return velMatchesWildcardPattern(pattern, name, true);
  });
}
BENCHMARK(wildcards)->Name("wildcards/own")->DenseRange(0, 3);

void fnMatch(benchmark::State& state) {
  matchAll(state, [](const char* pattern, const char* name) { return fnmatch(pattern, name, 0) == 0; });
}
BENCHMARK(fnMatch)->Name("wildcards/fnmatch")->DenseRange(0, 1);

void foldedWildcards(benchmark::State& state) {
  matchAll(state, [](const char* pattern, const char* name) {
    return velMatchesWildcardPattern(pattern, name, false);
  });
}
BENCHMARK(foldedWildcards)->Name("wildcards nocase/own")->DenseRange(0, 1);

void foldedFnMatch(benchmark::State& state) {
  matchAll(state,
           [](const char* pattern, const char* name) { return fnmatch(pattern, name, FNM_CASEFOLD) == 0; });
}
BENCHMARK(foldedFnMatch)->Name("wildcards nocase/fnmatch")->DenseRange(0, 1);

}  // namespace
