// Relative directory paths made absolute.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>

#include "platform/test/scratch_directory.h"
#include "vel_include/vel_filesys.h"

namespace {

constexpr size_t kLimit = VEL_MAX_PATH_LENGTH;
constexpr char kFailed[] = "(failed)";

std::string expanded(const std::string& path) {
  char buffer[kLimit + 1];
  buffer[path.copy(buffer, kLimit)] = '\0';
  if (VelClFileABase::expandRelativePath(buffer)) return buffer;
  EXPECT_STREQ("", buffer) << path;
  return kFailed;
}

TEST(RelativePath, IncludesAbsoluteOnesThatNeedExpansion) {
  for (const char* path : {"a\\", "", "\\a\\", "C:/a", "C:\\a\\..\\b", "C:\\a.\\b"})
    EXPECT_TRUE(VelClFileABase::isRelativePath(path)) << path;
  for (const char* path : {"C:\\a\\", "C:\\.a\\", "/a/./b", "\\\\s\\h\\a"})
    EXPECT_FALSE(VelClFileABase::isRelativePath(path)) << path;
}

// Only the end of a component counts, and what is behind the last separator is dropped.
TEST(ExpandRelativePath, ResolvesAbsolutePaths) {
  const std::string full = "\\\\s\\" + std::string(kLimit - 5, 'x');
  const struct {
    std::string path, result;
  } rows[] = {{"\\\\s\\h\\a\\..\\b\\", "\\\\s\\h\\b\\"},
              {"C:\\a\\..\\..\\", kFailed},
              {"C:\\a\\abc.\\..b\\", "C:\\a\\..b\\"},
              {"C:\\a\\abc..\\", "C:\\"},
              {"C:\\a\\b\\..\\c\\", "C:\\a\\c\\"},
              {"\\\\s\\h", "\\\\s\\h\\"},
              {"\\\\s\\h\\a\\..\\..\\", kFailed},
              {"C:\\a\\..\\", "C:\\"},
              {"C:\\a\\.\\b\\", "C:\\a\\b\\"},
              {full + "x", kFailed},
              {"\\\\s\\h\\:", "\\\\s\\h\\"},
              {full, full + "\\"}};
  for (const auto& row : rows) EXPECT_EQ(row.result, expanded(row.path)) << row.path;
}

// Whether it fits is asked of the result, not of what it passes through.
TEST(ExpandRelativePath, StartsInTheCurrentDirectory) {
  const vel::test::ScratchDirectory scratch;
  const vel::test::CurrentDirectory in(scratch.path());
  const std::string current = vel::test::backSlashed(std::filesystem::current_path().string()) + "\\";
  const std::string root = current.substr(0, 3);
  std::string up;
  for (auto i = std::count(current.begin(), current.end(), '\\'); i > 1; --i) up += "..\\";
  const std::string fitting(kLimit - current.size() - 1, 'x');
  const struct {
    std::string path, result;
  } rows[] = {{fitting + "\\", current + fitting + "\\"},
              {up + "a\\", root + "a\\"},
              {"", current},
              {"a\\.\\x\\..\\b\\c", current + "a\\b\\"},
              {fitting + "x\\", kFailed},
              {fitting + "xx\\..\\", current},
              {up + "..\\", kFailed}};
  for (const auto& row : rows) EXPECT_EQ(row.result, expanded(row.path)) << row.path;
  const vel::test::CurrentDirectory inRoot(std::filesystem::current_path().root_path());
  EXPECT_EQ(root + "a\\", expanded("a\\"));
  EXPECT_EQ(kFailed, expanded("..\\"));
}

}  // namespace
