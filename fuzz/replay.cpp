// Runs a fuzz target without the fuzzer, always on the same inputs: the files of a folder, prefixes of them,
// copies with one byte changed, and mixtures of their pieces. The arguments are the name of the target, the
// folder, and the amount of work in thousands of bytes, which does not depend on how busy the machine is.
#include <csignal>
#include <cstdio>
#include <random>
#include <string>

#include "fuzz/bytes.h"
#include "platform/test/scratch_directory.h"

namespace {

const fuzz::Target* target = nullptr;
std::vector<std::uint8_t> input;

extern "C" void showInput(int) {
  for (const unsigned int byte : input) std::fprintf(stderr, "%02X", byte);
  std::fputs(" is an input that fails\n", stderr);
}

/// Returns the cost of an input in bytes. Even an empty input costs the time of a call, about 200 bytes.
constexpr std::int64_t costOf(std::size_t size) {
  return static_cast<std::int64_t>(size) + 200;
}

/// Returns the cost.
std::int64_t run(const std::string& bytes) {
  input.assign(bytes.begin(), bytes.end());
  input.shrink_to_fit();
  target->run(fuzz::Bytes(input.data(), input.size()));
  return costOf(bytes.size());
}

constexpr int kChanges[] = {1, 2, 4, 8, 16, 32, 64, 128, 127, 255};

/// Returns n, where every n-th damaged file is run to stay within the work. An odd number that 5 does not
/// divide selects different changes at each byte.
std::size_t shareFor(std::size_t size, std::int64_t work) {
  const auto length = static_cast<std::int64_t>(size);
  const std::int64_t all = length * (costOf(size / 2) + std::ssize(kChanges) * costOf(size));
  auto share = static_cast<std::size_t>(all / std::max<std::int64_t>(work, 1)) + 1;
  while (share > 1 && (share % 2 == 0 || share % 5 == 0)) ++share;
  return share;
}

void runDamaged(std::string seed, std::size_t share) {
  std::size_t count = 0;
  for (std::size_t size = 0; size < seed.size(); ++size)
    if (++count % share == 0) run(seed.substr(0, size));
  for (char& byte : seed)
    for (const int change : kChanges) {
      if (++count % share != 0) continue;
      byte = static_cast<char>(byte ^ change);
      run(seed);
      byte = static_cast<char>(byte ^ change);
    }
}

/// Returns a copy of a file in which pieces are replaced by pieces of other files.
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
  if (argc < 4) return 1;
  const auto& targets = fuzz::Target::all();
  const auto found =
      std::ranges::find(targets, std::string_view(argv[1]), [](const auto* each) { return each->name; });
  if (found == targets.end()) return 1;
  target = *found;
  const std::int64_t work = std::stoll(argv[3]) * 1000;
  std::signal(SIGABRT, showInput);
  std::vector<std::string> seeds;
  for (const auto& entry : std::filesystem::directory_iterator(argv[2]))
    seeds.push_back(vel::test::readFile(entry.path().string()));
  // The order in which a directory lists its files varies from one file system to another.
  std::ranges::sort(seeds);
  const std::int64_t workPerSeed = work / 2 / std::max<std::int64_t>(std::ssize(seeds), 1);
  for (const std::string& seed : seeds) {
    run(seed);
    runDamaged(seed, shareFor(seed.size(), workPerSeed));
  }
  std::mt19937 random(4711);
  for (std::int64_t left = seeds.empty() ? 0 : work / 2; left > 0;) left -= run(mixture(seeds, random));
  std::printf("%zu files\n", seeds.size());
  return seeds.empty() ? 1 : 0;
}
