// Uses all parts of the library from several threads at the same time, each with its own objects. The thread
// sanitizer thereby finds shared state. The examples test traces of several threads.
#include "codepage/test/strict_run.h"
#include "platform/test/test.h"
#include "vel_include/vel.h"

namespace {

constexpr unsigned int kThreads = 4;

/// The thread's own catalog, opened before other threads run.
using Catalog = const VelClMessageCatalog;

template <typename... Parts>
std::string text(const Parts&... parts) {
  std::ostringstream out;
  ((out << parts << ' '), ...);
  return out.str();
}

std::string smallThings(Catalog&) {
  char digits[21];
  velW64toa(12345678901, digits);
  velSleepMilliSeconds(1);
  velFree(velRealloc(velCalloc(2, 8), 100));
  VelClMemoryPool(10).allocate(5);
  const bool hasTime = velGetTimeStamp() != 0 && VelClTiming().elapsed() >= 0;
  return text(digits, VelClCCSID(943).getName(), VelClCCSID::getConsoleCCSID() != 0, hasTime,
              VelClRandomNumberGenerator(7).getRandomNumber(), VelClBitArray(100).getNumOfSetBits());
}

/// Converts by the library's tables and algorithms, by ICU where it is installed, and strictly.
std::string conversions(Catalog&) {
  std::string all;
  for (const int target : {850, 943, 1208}) {
    const VelClCodePage2CodePageConverter converter(VelClCCSID::CCSID_500, VelClCCSID(target));
    char out[100] = "";
    converter.convertBytes(out, sizeof out, "\xC1", 1);
    VelClStrictConversion strict(VelClCCSID::CCSID_500, VelClCCSID(target));
    all += convertInPieces(strict, "\xC2", {}).bytes + out;
  }
  return all;
}

std::string iniFiles(Catalog&) {
  VelClIniFileSave file("own");
  file.loadFromBuffer("[A]\nx=7\n", 8, '\n', false, false);
  int number = 0;
  const bool found = file.getSection("a") && file.getOption("X", number) && file.addOption("new", "1");
  VelClIniFileOptionCursor cursor(file, "A");
  return text(found, number, cursor.setTo("new"));
}

/// The temporary file reserves the name until the end.
std::string files(Catalog&) {
  char name[VEL_MAX_PATH_LENGTH + 1];
  vel::test::closeDescriptor(velTmpFileCreate(nullptr, "THR", name));
  VelClFile file(name, nullptr);
  VelClDirectory directory((std::string(name) + ".own").c_str());
  const bool isMade = directory.create() && file.copyTo(directory.getName(), true);
  unsigned int count = 0;
  for (VelClDirectoryWalk walk(directory); walk.isValid(); walk.setToNext()) count += walk.isFile() ? 1U : 0U;
  return text(isMade, count, directory.removeAll(true) && file.remove());
}

std::string programs(Catalog&) {
  const VelClExeFile child("launch_child");
  VelClNewSyncProcess waited(child);
  VelClNewAsyncProcess detached(child);
  waited.addArgument(5L);
  detached.addArgument(0L);
  const bool areLaunched = waited.launch() && detached.launch();
  const auto id = static_cast<unsigned int>(detached.getResult());
  const VelClDllProcLoaderFile library{VelClFilename("sample_library")};
  return text(areLaunched, waited.getResult(), vel::test::endsWithin(id, vel::test::kTimeLimitMs),
              library.isValid());
}

std::string messages(Catalog& catalog) {
  return text(VelClMessage(catalog, 2, "you").isValid(), VelClMessageCatalogCursor(catalog).setToFirst());
}

TEST(Threads, CanUseObjectsOfTheirOwnAtTheSameTime) {
  const vel::test::ScratchDirectory scratch;
  const vel::test::Variable directory("TMP", scratch.path().c_str());
  const vel::test::Variable report("VEL_TEST_REPORT", scratch.path("report").c_str());
  Catalog catalogs[kThreads];
  const std::pair<std::string (*)(Catalog&), std::string> rows[] = {
      {smallThings, "12345678901 943 1 1 246583675 0 "},
      {conversions, "BABABA"},
      {iniFiles, "1 7 1 "},
      {files, "1 1 1 "},
      {programs, "1 5 1 1 "},
      {messages, "1 1 "}};
  for (const auto& [work, result] : rows) {
    std::string results[kThreads];
    std::vector<std::thread> threads;
    for (unsigned int i = 0; i < kThreads; ++i)
      threads.emplace_back([&result = results[i], &catalog = catalogs[i], run = work] {
        result = run(catalog) + run(catalog);
      });
    for (std::thread& thread : threads) thread.join();
    EXPECT_THAT(results, testing::Each(result + result));
  }
}

}  // namespace
