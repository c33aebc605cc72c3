// Runs a fuzz target in place of the fuzzer, always on the same inputs: on the files of a folder, on every
// beginning of each, on each with every byte changed, and on mixtures of their pieces. Its arguments are the
// folder, how many mixtures, and, for slow targets, which share of the damaged files is enough: "8" for an
// eighth.
#include <csignal>
#include <cstdio>
#include <random>
#include <string>

#include "fuzz/bytes.h"
#include "platform/test/scratch_directory.h"

namespace {

std::vector<std::uint8_t> input;

extern "C" void showInput(int) {
  for (const unsigned int byte : input) std::fprintf(stderr, "%02X", byte);
  std::fputs(" is an input that fails\n", stderr);
}

void run(const std::string& bytes) {
  input.assign(bytes.begin(), bytes.end());
  input.shrink_to_fit();
  LLVMFuzzerTestOneInput(input.data(), input.size());
}

void runDamaged(std::string seed, int share) {
  run(seed);
  int count = 0;
  const auto runShare = [&](const std::string& damaged) {
    if (++count % share == 0) run(damaged);
  };
  for (std::size_t size = 0; size < seed.size(); ++size) runShare(seed.substr(0, size));
  for (char& byte : seed)
    for (const int change : {1, 2, 4, 8, 16, 32, 64, 128, 127, 255}) {
      byte = static_cast<char>(byte ^ change);
      runShare(seed);
      byte = static_cast<char>(byte ^ change);
    }
}

/// A file in which pieces of all files take each other's place.
std::string mixture(const std::vector<std::string>& seeds, std::mt19937& random) {
  const auto below = [&random](std::size_t limit) { return random() % (limit + 1); };
  const auto oneOf = [&]() -> const std::string& { return seeds[random() % seeds.size()]; };
  std::string bytes = oneOf();
  for (auto changes = 1 + random() % 12; changes > 0; --changes) {
    const std::string& other = oneOf();
    const std::size_t at = below(bytes.size()), from = below(other.size());
    const std::string piece =
        random() % 4 == 0 ? std::string(1, static_cast<char>(random())) : other.substr(from, random() % 12);
    bytes.replace(at, random() % 3 == 0 ? random() % 12 : 0, piece);
  }
  return bytes;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3) return 1;
  std::signal(SIGABRT, showInput);
  std::vector<std::string> seeds;
  for (const auto& entry : std::filesystem::directory_iterator(argv[1]))
    seeds.push_back(vel::test::readFile(entry.path().string()));
  // Folders are listed in any order.
  std::ranges::sort(seeds);
  for (const std::string& seed : seeds) runDamaged(seed, argc > 3 ? std::stoi(argv[3]) : 1);
  std::mt19937 random(4711);
  for (int left = std::stoi(argv[2]); left > 0; --left) run(mixture(seeds, random));
  std::printf("%zu files\n", seeds.size());
  return seeds.empty() ? 1 : 0;
}
