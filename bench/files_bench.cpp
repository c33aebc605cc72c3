// Measures the functions on files by names of any length, compared with the system's bare calls and with cp.
#include <benchmark/benchmark.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "bench/posix_peers.h"
#include "bench/tree.h"
#include "vel_include/vel_files.h"

namespace {

namespace fs = std::filesystem;

/// Walks over 20 directories of 500 files.
template <typename Count>
void countFiles(benchmark::State& state, Count count) {
  const bench::Tree tree(20, 500);
  const std::string path = tree.path();
  for ([[maybe_unused]] auto round : state)
    if (count(path) != 20 * 500) state.SkipWithError("not all files");
}

void walkFiles(benchmark::State& state) {
  countFiles(state, [](const std::string& path) {
    int files = 0;
    VelClFileWalk walk;
    if (!walk.open(path).isOk()) return 0;
    while (walk.next()) files += walk.getKind() == VEL_FILE_KIND_FILE ? 1 : 0;
    return files;
  });
}
BENCHMARK(walkFiles)->Name("file walk/own");

void bareWalk(benchmark::State& state) {
  countFiles(state, [](const std::string& path) { return bench::countFiles(path.c_str()); });
}
BENCHMARK(bareWalk)->Name("file walk/readdir");

void standardFileWalk(benchmark::State& state) {
  countFiles(state, [](const std::string& path) {
    int files = 0;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(path))
      files += entry.is_regular_file() ? 1 : 0;
    return files;
  });
}
BENCHMARK(standardFileWalk)->Name("file walk/std filesystem");

void removeFileTree(benchmark::State& state) {
  bench::removeTrees(state, [](const std::string& path) { static_cast<void>(velTreeRemove(path).isOk()); });
}
BENCHMARK(removeFileTree)->Name("file tree removal/own")->UseManualTime()->Iterations(20);

void bareTreeRemoval(benchmark::State& state) {
  bench::removeTrees(state, [](const std::string& path) { bench::removeTreeByCalls(path.c_str()); });
}
BENCHMARK(bareTreeRemoval)->Name("file tree removal/bare calls")->UseManualTime()->Iterations(20);

/// Asks for the status of 100,000 names.
template <typename Ask>
void askStatus(benchmark::State& state, Ask ask) {
  constexpr int kNames = 100'000;
  const bench::Tree tree(1, 1000);
  std::vector<std::string> names;
  for (int file = 0; file < 1000; ++file) names.push_back(tree.first() + "/file" + std::to_string(file));
  for ([[maybe_unused]] auto round : state)
    for (int asked = 0; asked < kNames; ++asked)
      if (!ask(names[static_cast<std::size_t>(asked % 1000)])) state.SkipWithError("no status");
}

void statusOfFiles(benchmark::State& state) {
  askStatus(state, [](const std::string& name) {
    VelStFileStatus status;
    return velFileGetStatus(name, status).isOk() && status.kind == VEL_FILE_KIND_FILE;
  });
}
BENCHMARK(statusOfFiles)->Name("file status/own");

void bareStatus(benchmark::State& state) {
  askStatus(state, [](const std::string& name) { return bench::isRegularFile(name.c_str()); });
}
BENCHMARK(bareStatus)->Name("file status/statx");

/// Copies a file of 1 GB in its directory.
template <typename Copy>
void copyLarge(benchmark::State& state, Copy copy) {
  const fs::path source = fs::temp_directory_path() / "bench_large", target = source.string() + " copy";
  {
    const std::string block(1 << 20, 'x');
    std::ofstream file(source, std::ios::binary);
    for (int megabyte = 0; megabyte < 1024; ++megabyte) file << block;
  }
  for ([[maybe_unused]] auto round : state) {
    fs::remove(target);
    const double start = bench::processorTime();
    if (!copy(source.string(), target.string())) state.SkipWithError("not copied");
    state.SetIterationTime(bench::processorTime() - start);
  }
  fs::remove(source);
  fs::remove(target);
}

void copyFile(benchmark::State& state) {
  copyLarge(state,
            [](const std::string& from, const std::string& to) { return velFileCopy(from, to).isOk(); });
}
BENCHMARK(copyFile)->Name("file copy/own")->UseManualTime()->Iterations(5);

void copyByTool(benchmark::State& state) {
  copyLarge(state, [](const std::string& from, const std::string& to) {
    return bench::runTool({"cp", from.c_str(), to.c_str()});
  });
}
BENCHMARK(copyByTool)->Name("file copy/cp")->UseManualTime()->Iterations(5);

}  // namespace
