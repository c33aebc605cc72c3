// The names that one library answers to, and the numbers of failures.
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <filesystem>
#include <string>

#include "platform/platform.h"
#include "platform/test/child_process.h"
#include "platform/test/scratch_directory.h"

namespace vel::platform {

namespace {

namespace fs = std::filesystem;
using test::ScratchDirectory;

void copySample(const ScratchDirectory& scratch, const std::string& name) {
  fs::copy_file(fs::path(test::ownProgram()).parent_path() / "libsample_library.so", scratch.path(name));
}

/// 0 when the library is loaded and its procedure is there.
std::uint32_t errorOf(const std::string& name) {
  std::uint32_t error = 0;
  void* const library = loadLibrary(name.c_str(), error);
  EXPECT_EQ(library == nullptr, error != 0) << name;
  if (library == nullptr) return error;
  const Procedure procedure = findProcedure(library, "velSampleAnswer");
  EXPECT_TRUE(procedure != nullptr && procedure() == 42) << name;
  freeLibrary(library);
  return error;
}

TEST(PosixDynamicLibraries, OneNameStandsForThreeFiles) {
  const ScratchDirectory scratch;
  copySample(scratch, "given.DLL");
  copySample(scratch, "plain.so");
  copySample(scratch, "libusual.so");
  struct Row {
    const char* name;
    std::uint32_t error;
  };
  const Row rows[] = {
      {"given.DLL", 0},      {"plain.DLL", 0},       {"usual.DLL", 0}, {"plain.so", 0},  {"usual.so", ENOENT},
      {"plain.xyz", ENOENT}, {"absent.DLL", ENOENT}, {"plain.dll", 0}, {".DLL", ENOENT},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(errorOf(scratch.path(row.name)), row.error) << row.name;
    EXPECT_EQ(errorOf(test::backSlashed(scratch.path(row.name))), row.error) << row.name;
  }
  EXPECT_EQ(errorOf("C:" + scratch.path("GIVEN.dll")), 0U);
}

TEST(PosixDynamicLibraries, RefusedFilesAreNotMissing) {
  const ScratchDirectory scratch;
  scratch.write("bad.DLL", "no library");
  copySample(scratch, "bad.so");
  EXPECT_EQ(errorOf(scratch.path("bad.DLL")), static_cast<std::uint32_t>(ENOEXEC));
  EXPECT_EQ(errorOf(scratch.path()), static_cast<std::uint32_t>(ENOENT));
  EXPECT_EQ(errorOf(""), static_cast<std::uint32_t>(ENOENT));
}

TEST(PosixDynamicLibraries, TheSystemsOwnPlacesComeLast) {
  std::array<char, 261> path{};
  EXPECT_FALSE(searchLibrary("libc.so.6", path.data(), path.size()));
  std::uint32_t error = 0;
  void* const library = loadLibrary("libc.so.6", error);
  ASSERT_NE(library, nullptr);
  EXPECT_NE(findProcedure(library, "getpid"), nullptr);
  freeLibrary(library);
}

}  // namespace

}  // namespace vel::platform
