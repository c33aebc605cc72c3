// Measures walking over a directory of 2,000 files with their attributes, and removing a tree, compared with
// the system's calls and the standard library.
#include <benchmark/benchmark.h>

#include <filesystem>
#include <string>

#include "bench/posix_peers.h"
#include "bench/tree.h"
#include "vel_include/vel_filesys.h"

namespace {

namespace fs = std::filesystem;

template <typename Walk>
void walkOver(benchmark::State& state, Walk walk) {
  const bench::Tree tree(1, 2000);
  const std::string path = tree.first();
  for ([[maybe_unused]] auto round : state)
    if (walk(path.c_str()) != 2000) state.SkipWithError("not all files");
}

void walk(benchmark::State& state) {
  walkOver(state, [](const char* path) {
    int files = 0;
    for (VelClDirectoryWalk walk(VelClLocation(path, false)); walk.isValid(); walk.setToNext())
      files += walk.isFile() && !walk.isReadOnly() ? 1 : 0;
    return files;
  });
}
BENCHMARK(walk)->Name("directory walk/own");

void readDir(benchmark::State& state) {
  walkOver(state, bench::countWritableFiles);
}
BENCHMARK(readDir)->Name("directory walk/readdir");

void standardWalk(benchmark::State& state) {
  walkOver(state, [](const char* path) {
    int files = 0;
    for (const fs::directory_entry& entry : fs::directory_iterator(path)) {
      const fs::file_status status = entry.symlink_status();
      files += fs::is_regular_file(status) && (status.permissions() & fs::perms(0222)) != fs::perms::none;
    }
    return files;
  });
}
BENCHMARK(standardWalk)->Name("directory walk/std filesystem");

void removeTree(benchmark::State& state) {
  bench::removeTrees(state, [](const std::string& path) { VelClDirectory(path.c_str()).removeAll(true); });
}
BENCHMARK(removeTree)->Name("tree removal/own")->UseManualTime()->Iterations(5);

void bareRemoval(benchmark::State& state) {
  bench::removeTrees(state, [](const std::string& path) { bench::removeTreeByCalls(path.c_str()); });
}
BENCHMARK(bareRemoval)->Name("tree removal/bare calls")->UseManualTime()->Iterations(5);

void standardRemoval(benchmark::State& state) {
  bench::removeTrees(state, [](const std::string& path) { fs::remove_all(path); });
}
BENCHMARK(standardRemoval)->Name("tree removal/std filesystem")->UseManualTime()->Iterations(5);

}  // namespace
