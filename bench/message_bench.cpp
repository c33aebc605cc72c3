// Measures a message with ten inserts, from a string table and from a catalog library, compared with a
// formatting library, which need not look up the text, and with gettext and printf.
#include <benchmark/benchmark.h>
#include <libintl.h>
#include <spdlog/fmt/fmt.h>

#include <cstdio>
#include <string>

#include "bench/peer_time.h"
#include "vel_include/vel_messages.h"

namespace {

#define TEXT(a, b, c, d, e, f, g, h, i, j) \
  "File " a " of " b " on " c ": record " d " at " e " has " f " instead of " g " (" h ", " i ", " j ")"

constexpr const char* kTable[] = {"[BENCH]", "bench",
                                  TEXT("%1", "%2", "%3", "%4", "%5", "%6", "%7", "%8", "%9", "%10")};
constexpr unsigned long kId = 2;

/// Not known at compile time.
const char* volatile variables[] = {"orders.dat", "7",     "host4",   "1204",    "0x4FF0",
                                    "FF",         "digit", "warning", "retried", "12:34:56"};

template <typename Catalog>
void loadMessages(benchmark::State& state, const Catalog& catalog) {
  for ([[maybe_unused]] auto round : state) {
    const VelClMessage message(catalog, kId, variables[0], variables[1], variables[2], variables[3],
                               variables[4], variables[5], variables[6], variables[7], variables[8],
                               variables[9]);
    benchmark::DoNotOptimize(message.getAsCString());
    if (!message.isValid()) state.SkipWithError("no message");
  }
}

void fromTable(benchmark::State& state) {
  loadMessages(state, VelClMessageCatalog(kTable, std::size(kTable)));
}
BENCHMARK(fromTable)->Name("message table/own");

void fromLibrary(benchmark::State& state) {
  const bench::UserLocale locale("C.UTF-8");
  loadMessages(state, VelClMessageCatalog(VelClFilename(BENCH_CATALOGS "/bench_catalog.DLL")));
}
BENCHMARK(fromLibrary)->Name("message library/own");

void formatted(benchmark::State& state) {
  for ([[maybe_unused]] auto round : state) {
    const std::string text =
        fmt::format(TEXT("{}", "{}", "{}", "{}", "{}", "{}", "{}", "{}", "{}", "{}"), variables[0],
                    variables[1], variables[2], variables[3], variables[4], variables[5], variables[6],
                    variables[7], variables[8], variables[9]);
    benchmark::DoNotOptimize(text.data());
  }
}
BENCHMARK(formatted)->Name("message/fmt");

constexpr const char* kMessageId = TEXT("%s", "%s", "%s", "%s", "%s", "%s", "%s", "%s", "%s", "%s");

void translated(benchmark::State& state) {
  const bench::UserLocale locale("C.UTF-8");
  bindtextdomain("bench", BENCH_CATALOGS);
  char text[VEL_MAX_MESSAGE_LENGTH];
  if (dgettext("bench", kMessageId) == kMessageId) state.SkipWithError("no translation");
  for ([[maybe_unused]] auto round : state) {
    const int length = std::snprintf(text, sizeof text, dgettext("bench", kMessageId), variables[0],
                                     variables[1], variables[2], variables[3], variables[4], variables[5],
                                     variables[6], variables[7], variables[8], variables[9]);
    benchmark::DoNotOptimize(length);
    benchmark::ClobberMemory();
  }
}
BENCHMARK(translated)->Name("message/gettext");

}  // namespace
