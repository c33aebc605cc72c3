// Measures loading INI files, looking up options, and the memory that a model needs, compared with inih,
// which does not build a model, and with GLib's key files. The files contain generated options of 8 to 44
// characters, all of them different.
#include <benchmark/benchmark.h>
#include <glib.h>
#include <ini.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <vector>

#include "vel_include/vel_inifile.h"
#include "vel_include/vel_memmgr.h"

namespace {

constexpr std::size_t kMegabyte = 1000 * 1000;

class Generator {
 public:
  std::string section(int number) { return "section " + std::to_string(number); }
  /// Returns a name that differs from those of all other calls.
  std::string name() { return letters(1 + numbers_() % 12) + std::to_string(++count_); }
  std::string value() { return letters(4 + numbers_() % 20); }

 private:
  std::string letters(std::size_t count) {
    std::string text;
    while (text.size() < count) text += static_cast<char>('a' + numbers_() % 26);
    return text;
  }

  std::mt19937 numbers_{4711};
  int count_ = 0;
};

std::string generate(std::size_t size, int sections) {
  Generator generator;
  std::string text;
  for (int i = 0; i < sections; ++i) {
    text += "[" + generator.section(i) + "]\n";
    while (text.size() < size / static_cast<std::size_t>(sections) * static_cast<std::size_t>(i + 1))
      text += generator.name() + " = " + generator.value() + "\n";
  }
  return text;
}

/// A file of this number of megabytes, created when it is first used and removed when the program ends.
class GeneratedFile {
 public:
  explicit GeneratedFile(std::int64_t megabytes)
      : path_((std::filesystem::temp_directory_path() / ("bench" + std::to_string(megabytes) + ".ini"))
                  .string()) {
    std::ofstream(path_, std::ios::binary)
        << generate(static_cast<std::size_t>(megabytes) * kMegabyte, megabytes == 1 ? 1000 : 10'000);
  }
  GeneratedFile(const GeneratedFile&) = delete;
  GeneratedFile& operator=(const GeneratedFile&) = delete;
  ~GeneratedFile() { std::remove(path_.c_str()); }

  const char* path() const { return path_.c_str(); }
  std::int64_t size() const { return static_cast<std::int64_t>(std::filesystem::file_size(path_)); }

 private:
  std::string path_;
};

const GeneratedFile& fileOf(const benchmark::State& state) {
  static const GeneratedFile small(1);
  static const GeneratedFile large(100);
  return state.range(0) == 1 ? small : large;
}

void setBytes(benchmark::State& state) {
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * fileOf(state).size());
}

void sizes(benchmark::internal::Benchmark* loading) {
  loading->Arg(1)->Arg(100)->Unit(benchmark::kMillisecond);
}

void load(benchmark::State& state) {
  const char* const path = fileOf(state).path();
  for ([[maybe_unused]] auto round : state) {
    VelClIniFile file(path);
    if (!file.load(false)) state.SkipWithError("not read");
  }
  setBytes(state);
}
BENCHMARK(load)->Name("ini load/own")->Apply(sizes);

int count(void* options, const char*, const char*, const char*) {
  ++*static_cast<long*>(options);
  return 1;
}

void loadInih(benchmark::State& state) {
  const char* const path = fileOf(state).path();
  for ([[maybe_unused]] auto round : state) {
    long options = 0;
    if (ini_parse(path, count, &options) != 0) state.SkipWithError("not read");
    benchmark::DoNotOptimize(options);
  }
  setBytes(state);
}
BENCHMARK(loadInih)->Name("ini load/inih")->Apply(sizes);

void loadGlib(benchmark::State& state) {
  const char* const path = fileOf(state).path();
  for ([[maybe_unused]] auto round : state) {
    GKeyFile* const file = g_key_file_new();
    if (g_key_file_load_from_file(file, path, G_KEY_FILE_NONE, nullptr) == 0) state.SkipWithError("not read");
    g_key_file_free(file);
  }
  setBytes(state);
}
BENCHMARK(loadGlib)->Name("ini load/glib")->Apply(sizes);

/// One section of 1,000 options, and all their names in another order.
struct Questions {
  std::string text = "[main]\n";
  std::vector<std::string> names;

  Questions() {
    Generator generator;
    for (int i = 0; i < 1000; ++i) {
      names.push_back(generator.name());
      text += names.back() + " = " + generator.value() + "\n";
    }
    std::shuffle(names.begin(), names.end(), std::mt19937(4711));
  }
};

template <typename Ask>
void askAll(benchmark::State& state, const Questions& questions, Ask ask) {
  std::size_t next = 0;
  for ([[maybe_unused]] auto round : state) {
    ask(questions.names[next].c_str());
    if (++next == questions.names.size()) next = 0;
  }
}

void ask(benchmark::State& state) {
  const Questions questions;
  VelClIniFile file("unused");
  file.loadFromBuffer(questions.text.data(), questions.text.size(), '\n', true, false);
  if (!file.getSection("main")) state.SkipWithError("not found");
  askAll(state, questions, [&](const char* name) {
    const char* value = nullptr;
    file.getOption(name, value);
    benchmark::DoNotOptimize(value);
  });
}
BENCHMARK(ask)->Name("ini ask/own");

/// Each query of GLib names the section and copies the value; GLib does not offer any other query.
void askGlib(benchmark::State& state) {
  const Questions questions;
  GKeyFile* const file = g_key_file_new();
  g_key_file_load_from_data(file, questions.text.data(), questions.text.size(), G_KEY_FILE_NONE, nullptr);
  askAll(state, questions, [&](const char* name) {
    gchar* const value = g_key_file_get_value(file, "main", name, nullptr);
    benchmark::DoNotOptimize(value);
    g_free(value);
  });
  g_key_file_free(file);
}
BENCHMARK(askGlib)->Name("ini ask/glib");

std::size_t memoryInUse = 0;

void* countingMalloc(std::size_t size) {
  auto* const block = static_cast<std::size_t*>(std::malloc(size + 16));
  *block = size;
  memoryInUse += size;
  return block + 2;
}
void countingFree(void* memory) {
  if (memory == nullptr) return;
  auto* const block = static_cast<std::size_t*>(memory) - 2;
  memoryInUse -= *block;
  std::free(block);
}

/// Returns the bytes allocated by the memory manager per byte of the file, for lines of this number of bytes:
/// "name=value" and the line break.
void memory(benchmark::State& state) {
  const auto length = static_cast<std::size_t>(state.range(0));
  std::string text;
  for (int i = 0; i < 100'000; ++i) {
    if (i % 100 == 0) text += "[section " + std::to_string(i / 100) + "]\n";
    const std::string name = std::to_string(100'000 + i);
    text += name + "=" + std::string(length - name.size() - 2, 'v') + "\n";
  }
  velSetNewMemoryManager(countingMalloc, nullptr, countingFree);
  {
    VelClIniFile file("unused");
    for ([[maybe_unused]] auto round : state)
      file.loadFromBuffer(text.data(), text.size(), '\n', true, false);
    state.counters["bytesPerByte"] = static_cast<double>(memoryInUse) / static_cast<double>(text.size());
  }
  velSetNewMemoryManager(std::malloc, nullptr, std::free);
}
BENCHMARK(memory)->Name("ini memory/own")->Arg(12)->Arg(16)->Arg(24)->Arg(40)->Iterations(1);

}  // namespace
