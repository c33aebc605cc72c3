// Measures conversions between code pages, compared with ICU, with iconv, with simdutf if the build has it,
// and with merely moving the bytes. If the environment variable VEL_KERNELS selects a level of kernels, the
// names of the jobs begin with it, and simdutf uses the same level.
#include <benchmark/benchmark.h>
#include <iconv.h>
#include <unicode/ucnv.h>

#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>
#include <tuple>

#include "bench/sample_text.h"
#include "vel_include/vel_codepage.h"
#if defined(BENCH_SIMDUTF)
#include <simdutf.h>
#endif

namespace {

using bench::kScripts;
using bench::Script;

constexpr int kUcs2 = 13488;

/// The name of a page at a peer; empty if the peer does not support the page.
struct Job {
  int from;
  int to;
  const Script* script;  ///< null for mixed text
  const char* icu;
  const char* iconv;
};

// ICU does not support 948, so it converts the similar page 950, and the text contains only characters of
// both.
constexpr Job kJobs[] = {{850, kUcs2, &kScripts[1], "850", "CP850"},
                         {37, kUcs2, &kScripts[1], "37", "CP037"},
                         {kUcs2, 850, &kScripts[1], "850", "CP850"},
                         {kUcs2, 500, &kScripts[1], "500", "CP500"},
                         {kUcs2, 819, &kScripts[1], "ISO-8859-1", "ISO-8859-1"},
                         {819, kUcs2, &kScripts[1], "ISO-8859-1", "ISO-8859-1"},
                         {1200, kUcs2, &kScripts[1], "UTF-16LE", "UTF-16LE"},
                         {65500, kUcs2, &kScripts[1], "UTF-16BE", "UTF-16BE"},
                         {1208, kUcs2, &kScripts[0], "UTF-8", "UTF-8"},
                         {1208, kUcs2, &kScripts[1], "UTF-8", "UTF-8"},
                         {1208, kUcs2, &kScripts[2], "UTF-8", "UTF-8"},
                         {1208, kUcs2, &kScripts[3], "UTF-8", "UTF-8"},
                         {1208, kUcs2, &kScripts[4], "UTF-8", "UTF-8"},
                         {kUcs2, 1208, &kScripts[0], "UTF-8", "UTF-8"},
                         {kUcs2, 1208, &kScripts[1], "UTF-8", "UTF-8"},
                         {kUcs2, 1208, &kScripts[2], "UTF-8", "UTF-8"},
                         {kUcs2, 1208, &kScripts[3], "UTF-8", "UTF-8"},
                         {kUcs2, 1208, &kScripts[4], "UTF-8", "UTF-8"},
                         {930, kUcs2, nullptr, "930", "CP930"},
                         {939, kUcs2, nullptr, "939", "CP939"},
                         {948, kUcs2, nullptr, "950", ""}};
constexpr std::size_t kSizes[] = {16, 64, 256, 4 << 10, 64 << 10, 4 << 20, 16 << 20};

class Converter {
 public:
  virtual ~Converter() = default;
  /// Returns the bytes written.
  virtual std::size_t convert(char* target, std::size_t room, const char* source, std::size_t size) = 0;
};

class Own : public Converter {
 public:
  explicit Own(const Job& job) {
    if (job.to == kUcs2)
      converter_ = std::make_unique<VelClCodePage2UnicodeConverter>(VelClCCSID(job.from));
    else
      converter_ = std::make_unique<VelClUnicode2CodePageConverter>(VelClCCSID(job.to));
  }
  std::size_t convert(char* target, std::size_t room, const char* source, std::size_t size) override {
    return converter_->convertBytes(target, room, source, size);
  }

 private:
  std::unique_ptr<VelClConverterABase> converter_;
};

class Icu : public Converter {
 public:
  explicit Icu(const Job& job) : toUnicode_(job.to == kUcs2) {
    UErrorCode status = U_ZERO_ERROR;
    const int number = std::atoi(job.icu);
    converter_ = number != 0 ? ucnv_openCCSID(number, UCNV_UNKNOWN, &status) : ucnv_open(job.icu, &status);
    ucnv_setFallback(converter_, 1);
  }
  ~Icu() override { ucnv_close(converter_); }
  std::size_t convert(char* target, std::size_t room, const char* source, std::size_t size) override {
    UErrorCode status = U_ZERO_ERROR;
    char* position = target;
    if (toUnicode_) {
      auto** const units = reinterpret_cast<char16_t**>(&position);
      ucnv_toUnicode(converter_, units, *units + room / 2, &source, source + size, nullptr, 1, &status);
    } else {
      const auto* units = reinterpret_cast<const char16_t*>(source);
      ucnv_fromUnicode(converter_, &position, target + room, &units, units + size / 2, nullptr, 1, &status);
    }
    return U_SUCCESS(status) ? static_cast<std::size_t>(position - target) : 0;
  }

 private:
  bool toUnicode_;
  UConverter* converter_;
};

class Iconv : public Converter {
 public:
  explicit Iconv(const Job& job)
      : handle_(job.to == kUcs2 ? iconv_open("UTF-16LE", job.iconv) : iconv_open(job.iconv, "UTF-16LE")) {}
  ~Iconv() override { iconv_close(handle_); }
  std::size_t convert(char* target, std::size_t room, const char* source, std::size_t size) override {
    char* in = const_cast<char*>(source);
    char* out = target;
    iconv(handle_, nullptr, nullptr, nullptr, nullptr);
    return iconv(handle_, &in, &size, &out, &room) == 0 ? static_cast<std::size_t>(out - target) : 0;
  }

 private:
  iconv_t handle_;
};

/// Returns the level that VEL_KERNELS selects; null if it has no effect.
const char* selectedLevel() {
  const char* const wanted = std::getenv("VEL_KERNELS");
  return wanted != nullptr && std::strcmp(wanted, velGetKernelLevel()) == 0 ? wanted : nullptr;
}

#if defined(BENCH_SIMDUTF)

/// simdutf's code for the level of kernels that the library uses.
const simdutf::implementation& simdutfOfLevel() {
  const std::map<std::string, const char*> names = {
      {"avx512", "icelake"}, {"avx2", "haswell"}, {"sse4", "westmere"}, {"portable", "fallback"}};
  return *simdutf::get_available_implementations()[names.at(velGetKernelLevel())];
}

class Simdutf : public Converter {
 public:
  explicit Simdutf(const Job& job) : toUnicode_(job.to == kUcs2), level_(simdutfOfLevel()) {}
  std::size_t convert(char* target, std::size_t, const char* source, std::size_t size) override {
    if (toUnicode_)
      return level_.convert_utf8_to_utf16le(source, size, reinterpret_cast<char16_t*>(target)) * 2;
    return level_.convert_utf16le_to_utf8(reinterpret_cast<const char16_t*>(source), size / 2, target);
  }

 private:
  bool toUnicode_;
  const simdutf::implementation& level_;
};

#endif

/// Widens bytes to units, or narrows units to bytes, with the processor's widest vectors.
class Mover : public Converter {
 public:
  explicit Mover(const Job& job) : job_(job) {}
  std::size_t convert(char* target, std::size_t, const char* source, std::size_t size) override {
    if (job_.from == 65500 || job_.from == 1200) return move(target, source, size);
    return job_.to == kUcs2 ? widen(target, source, size) : narrow(target, source, size / 2);
  }

 private:
  static std::size_t move(char* target, const char* source, std::size_t size) {
    std::memcpy(target, source, size);
    return size;
  }
  __attribute__((target_clones("arch=skylake-avx512", "avx2", "default"), optimize("O3"))) static std::size_t
  widen(char* target, const char* source, std::size_t size) {
    auto* const units = reinterpret_cast<std::uint16_t*>(target);
    for (std::size_t i = 0; i < size; ++i) units[i] = static_cast<unsigned char>(source[i]);
    return size * 2;
  }
  __attribute__((target_clones("arch=skylake-avx512", "avx2", "default"), optimize("O3"))) static std::size_t
  narrow(char* target, const char* source, std::size_t size) {
    const auto* const units = reinterpret_cast<const std::uint16_t*>(source);
    for (std::size_t i = 0; i < size; ++i) target[i] = static_cast<char>(units[i]);
    return size;
  }

  const Job& job_;
};

/// The double-byte characters that both this library and ICU map.
std::vector<std::uint16_t> commonPairs(const Job& job) {
  Own own(job);
  Icu icu(job);
  const bool isEbcdic = VelClCCSID(job.from).isEBCDIC();
  const std::string shifts[] = {isEbcdic ? "\x0E" : "", isEbcdic ? "\x0F" : ""};
  std::vector<std::uint16_t> pairs;
  for (unsigned int pair = 0x4100; pair < 0xFE00; ++pair) {
    const std::string text =
        shifts[0] + static_cast<char>(pair >> 8) + static_cast<char>(pair & 0xFF) + shifts[1];
    const auto has = [&text](Converter& converter) {
      char16_t unit[8];
      const std::size_t size =
          converter.convert(reinterpret_cast<char*>(unit), sizeof unit, text.data(), text.size());
      return size == 2 && unit[0] != 0xFFFD && unit[0] != 0x1A;
    };
    if (has(own) && has(icu)) pairs.push_back(static_cast<std::uint16_t>(pair));
  }
  return pairs;
}

/// Returns the source of a job, of this size or a few bytes less.
std::string makeSource(const Job& job, std::size_t size) {
  if (job.script == nullptr)
    return bench::makeMixedText(commonPairs(job), VelClCCSID(job.from).isEBCDIC(), size);
  const std::u16string text = bench::makeText(*job.script, size / 2);
  const auto* const bytes = reinterpret_cast<const char*>(text.data());
  if (job.from == kUcs2) return {bytes, size / 2 * 2};
  // The number of units for this size is not known, so ever longer texts are encoded until one is long
  // enough.
  std::string source;
  for (std::size_t units = size; source.size() < size - 3; units = units * 9 / 8) {
    Job back = job;
    std::swap(back.from, back.to);
    const std::u16string all = bench::makeText(*job.script, units);
    source.resize(units * 3);
    source.resize(Icu(back).convert(source.data(), source.size(), reinterpret_cast<const char*>(all.data()),
                                    units * 2));
  }
  source.resize(size);
  // The text must not end within a UTF-8 character or a pair.
  const bool isUtf8 = job.from == 1208;
  while (isUtf8 && (source.back() & 0xC0) == 0x80) source.pop_back();
  if (isUtf8 && (source.back() & 0x80) != 0) source.pop_back();
  return source;
}

/// Cached, because the repetitions of a benchmark run in any order.
const std::string& sourceOf(const Job& job, std::size_t size) {
  static std::map<std::tuple<int, const Script*, std::size_t>, std::string> sources;
  std::string& source = sources[{job.from, job.script, size}];
  if (source.empty()) source = makeSource(job, size);
  return source;
}

template <typename Peer>
void run(benchmark::State& state, const Job& job) {
  const std::string& source = sourceOf(job, static_cast<std::size_t>(state.range(0)));
  std::vector<char> target(source.size() * 3 + 64);
  Peer peer(job);
  std::size_t written = 0;
  for ([[maybe_unused]] auto round : state) {
    written = peer.convert(target.data(), target.size(), source.data(), source.size());
    benchmark::ClobberMemory();
  }
  if (written == 0) state.SkipWithError("nothing was converted");
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(source.size()));
}

std::string nameOf(const Job& job) {
  const char* const level = selectedLevel();
  return std::string(level != nullptr ? level : "codepage") + ' ' + std::to_string(job.from) + " to " +
         std::to_string(job.to) + ' ' + (job.script == nullptr ? "mixed" : job.script->name);
}

template <typename Peer>
void add(const Job& job, const char* peer, std::size_t size) {
  benchmark::RegisterBenchmark((nameOf(job) + '/' + peer).c_str(), &run<Peer>, job)
      ->Arg(static_cast<std::int64_t>(size));
}

void addAll() {
  for (const Job& job : kJobs)
    for (const std::size_t size : kSizes) {
      // Mixed text of 16 bytes would have no pair.
      if (job.script == nullptr && size < 64) continue;
      add<Own>(job, "own", size);
      add<Icu>(job, "ICU", size);
      if (*job.iconv != '\0') add<Iconv>(job, "iconv", size);
      const bool isUtf8 = job.from == 1208 || job.to == 1208;
#if defined(BENCH_SIMDUTF)
      if (isUtf8) add<Simdutf>(job, "simdutf", size);
#endif
      const bool isWide = job.script != &kScripts[0] && isUtf8;
      if (job.script != nullptr && !isWide) add<Mover>(job, "moving", size);
    }
}

[[maybe_unused]] const bool kAdded = (addAll(), true);

}  // namespace
