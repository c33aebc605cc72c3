// Measures hexadecimal dumps, compared with xxd, which dumps a file of the same bytes, and with a loop that
// writes the digits in pairs and the characters.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>

#include "bench/peer_time.h"
#include "vel_include/vel_util.h"

namespace {

constexpr std::size_t kSize = 1 << 20;
constexpr std::size_t kLine = 16;

const std::string& bytes() {
  static const std::string all = [] {
    std::mt19937 numbers(4711);
    std::string made(kSize, '\0');
    for (char& byte : made) byte = static_cast<char>(numbers());
    return made;
  }();
  return all;
}

void setBytes(benchmark::State& state) {
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(kSize));
}

void lines(benchmark::State& state) {
  const char* const data = bytes().data();
  for ([[maybe_unused]] auto round : state)
    for (std::size_t offset = 0; offset < kSize; offset += kLine) {
      const VelClStrepHexDump line(offset, data + offset, kLine);
      benchmark::DoNotOptimize(line.getAsCString());
      benchmark::ClobberMemory();
    }
  setBytes(state);
}
BENCHMARK(lines)->Name("dump memory/own");

void toStream(benchmark::State& state) {
  std::ofstream stream("/dev/null", std::ios::binary);
  for ([[maybe_unused]] auto round : state) velDumpHex(stream, bytes().data(), kSize);
  setBytes(state);
}
BENCHMARK(toStream)->Name("dump stream/own");

void writePair(char* out, const char* pairs, std::size_t byte) {
  std::memcpy(out, pairs + byte % 256 * 2, 2);
}

/// Does the minimum of every dump: writes the digits of address and bytes, and the printable characters.
void pairTable(benchmark::State& state) {
  char pairs[513];
  for (std::size_t byte = 0; byte < 256; ++byte) std::snprintf(pairs + byte * 2, 3, "%02zX", byte);
  const char* const data = bytes().data();
  char line[8 + kLine * 4 + 4] = {};
  for ([[maybe_unused]] auto round : state)
    for (std::size_t offset = 0; offset < kSize; offset += kLine) {
      for (std::size_t i = 0; i < 4; ++i) writePair(line + 2 * i, pairs, offset >> (24 - 8 * i));
      for (std::size_t i = 0; i < kLine; ++i) {
        const auto byte = static_cast<unsigned char>(data[offset + i]);
        writePair(line + 10 + 3 * i, pairs, byte);
        line[10 + kLine * 3 + i] = byte >= 0x20 && byte < 0x7F ? static_cast<char>(byte) : '.';
      }
      benchmark::DoNotOptimize(line);
      benchmark::ClobberMemory();
    }
  setBytes(state);
}
BENCHMARK(pairTable)->Name("dump memory/pair table");

void xxd(benchmark::State& state) {
  const std::filesystem::path file = std::filesystem::temp_directory_path() / "bench.bin";
  std::ofstream(file, std::ios::binary) << bytes();
  const std::string command = "xxd " + file.string() + " /dev/null";
  bench::loopWithChildren(state, [&] {
    if (std::system(command.c_str()) != 0) state.SkipWithError("no xxd");
  });
  setBytes(state);
  std::filesystem::remove(file);
}
BENCHMARK(xxd)->Name("dump/xxd")->UseManualTime();

}  // namespace
