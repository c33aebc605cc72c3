// Directories with files that benchmarks walk over and remove.
#pragma once

#include <benchmark/benchmark.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "bench/posix_peers.h"

namespace bench {

/// Directories with this number of files each, removed at the end.
class Tree {
 public:
  Tree(int directories, int files) : path_(std::filesystem::temp_directory_path() / "bench_tree") {
    std::filesystem::remove_all(path_);
    for (int directory = 0; directory < directories; ++directory) {
      const std::filesystem::path place = path_ / ("directory" + std::to_string(directory));
      std::filesystem::create_directories(place);
      for (int file = 0; file < files; ++file) std::ofstream(place / ("file" + std::to_string(file)));
    }
  }
  Tree(const Tree&) = delete;
  Tree& operator=(const Tree&) = delete;
  ~Tree() { std::filesystem::remove_all(path_); }

  std::string path() const { return path_.string(); }
  std::string first() const { return (path_ / "directory0").string(); }

 private:
  std::filesystem::path path_;
};

/// Measures the processor time of removing a tree.
template <typename Remove>
void removeTrees(benchmark::State& state, Remove remove) {
  for ([[maybe_unused]] auto round : state) {
    const Tree tree(10, 50);
    const double start = processorTime();
    remove(tree.path());
    state.SetIterationTime(processorTime() - start);
    if (std::filesystem::exists(tree.path())) state.SkipWithError("not removed");
  }
}

}  // namespace bench
