// Libraries with ICU's names in directories that other users can write to: none of their code may run.
#include "platform/test/test.h"
#include "vel_include/vel_codepage.h"
#include "vel_include/vel_process.h"

namespace {

namespace fs = std::filesystem;

// IsNotLoadedAsIcu runs this test in child processes.
TEST(PlantedLibrary, FindsIcuOnlyIfInstalled) {
  _VelStError error;
  const void* const converter = velGetICUConverter(943, error);
  // VEL_TEST_ICU, where it is set, tells whether ICU is installed: "there" or "none".
  if (const char* const expected = std::getenv("VEL_TEST_ICU"); expected != nullptr) {
    EXPECT_EQ(converter != nullptr, std::string(expected) == "there");
  }
  velDeleteICUConverter(converter);
}

TEST(PlantedLibrary, IsNotLoadedAsIcu) {
  const vel::test::ScratchDirectory directory;
  const fs::path own = vel::test::ownProgram();
  // Each form of name that is tried: without a version, and with the newest, the oldest and other versions.
  for (const char* const name :
       {"icu.dll", "icuuc.dll", "icuuc99.dll", "icuuc72.dll", "icuuc49.dll", "icuuc32.dll", "libicuuc.so",
        "libicuuc.so.99", "libicuuc.so.72", "libicuuc.so.32"})
    fs::copy_file(own.parent_path() / "planted_library.library", directory.path(name));
  const std::string mark = directory.path("mark");
  const vel::test::Variable marked("VEL_PLANTED_MARK", mark.c_str());
  // Control: a planted library that is loaded creates the mark.
  velDllProcLoaderClose(velDllProcLoaderOpen(directory.path("icuuc.dll").c_str()));
  ASSERT_TRUE(fs::remove(mark));
  const fs::path copy = fs::path(directory.path("program")) / own.filename();
  fs::create_directory(copy.parent_path());
  fs::copy_file(own, copy);
  const vel::test::CurrentDirectory inside(directory.path());
  // This program, with the planted libraries in PATH; and a copy in a directory below theirs, which finds the
  // library under test, and ICU if it is in the same directory, through PATH.
  for (const auto& [program, path] : {std::pair{own, directory.path()}, {copy, own.parent_path().string()}}) {
    const auto child =
        vel::test::runChild(program.string(), {"--gtest_filter=*.FindsIcuOnlyIfInstalled", "--gtest_brief=1"},
                            {.environment = {{"PATH", path}}});
    EXPECT_EQ(child.exitCode, 0) << child.output << child.errors;
    EXPECT_FALSE(fs::exists(mark)) << path;
  }
}

}  // namespace
