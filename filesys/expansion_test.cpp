// Relative directory paths made absolute.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <optional>
#include <string>

#include "platform/test/scratch_directory.h"
#include "vel_include/vel_filesys.h"

namespace {

constexpr size_t kLimit = VEL_MAX_PATH_LENGTH;

std::optional<std::string> expanded(const std::string& path) {
  char buffer[kLimit + 1];
  buffer[path.copy(buffer, kLimit)] = '\0';
  if (VelClFileABase::expandRelativePath(buffer)) return buffer;
  EXPECT_STREQ("", buffer) << path;
  return std::nullopt;
}

// In back-slash style, with a drive on every system and without final separator.
std::string currentDirectory() {
  std::string path = std::filesystem::current_path().string();
  std::replace(path.begin(), path.end(), '/', '\\');
  if (path.starts_with('\\')) path.insert(0, "C:");
  return path.ends_with('\\') ? path.substr(0, path.size() - 1) : path;
}

class InDirectory {
 public:
  explicit InDirectory(const std::filesystem::path& path) : before_(std::filesystem::current_path()) {
    std::filesystem::current_path(path);
  }
  ~InDirectory() { std::filesystem::current_path(before_); }

 private:
  std::filesystem::path before_;
};

TEST(RelativePath, IncludesAbsoluteOnesThatNeedExpansion) {
  for (const char* path : {"a\\", "", "\\a\\", "C:/a", "C:\\a\\..\\b", "C:\\a\\.\\b", "C:\\a.\\b"})
    EXPECT_TRUE(VelClFileABase::isRelativePath(path)) << path;
  for (const char* path : {"C:\\a\\", "C:\\.a\\", "/a/./b", "\\\\s\\h\\a"})
    EXPECT_FALSE(VelClFileABase::isRelativePath(path)) << path;
}

TEST(ExpandRelativePath, ResolvesAbsolutePaths) {
  const struct {
    std::string path;
    std::optional<std::string> result;
  } rows[] = {
      {"C:\\a\\b\\..\\c\\", "C:\\a\\c\\"},
      {"C:\\a\\..\\", "C:\\"},
      {"C:\\a\\..\\..\\", std::nullopt},
      {"C:\\..\\", std::nullopt},
      {"C:\\a\\.\\b\\", "C:\\a\\b\\"},
      // What is behind the last separator is dropped.
      {"C:\\a\\b.txt", "C:\\a\\"},
      {"C:\\a\\..", "C:\\a\\"},
      {"C:\\", "C:\\"},
      // Only the end of a component counts.
      {"C:\\a\\abc..\\", "C:\\"},
      {"C:\\a\\abc.\\", "C:\\a\\"},
      {"C:\\a\\..b\\", "C:\\a\\..b\\"},
      {"\\\\s\\h\\a\\..\\b\\", "\\\\s\\h\\b\\"},
      {"\\\\s\\h\\a\\..\\..\\", std::nullopt},
      {"\\\\s\\h", "\\\\s\\h\\"},
      {"\\\\s\\h\\:", "\\\\s\\h\\"},
      {"\\\\s\\h\\", "\\\\s\\h\\"},
      {"C:\\" + std::string(kLimit - 4, 'x') + "\\", "C:\\" + std::string(kLimit - 4, 'x') + "\\"},
      {"\\\\s\\" + std::string(kLimit - 4, 'x'), std::nullopt},
      {"\\\\s\\" + std::string(kLimit - 5, 'x'), "\\\\s\\" + std::string(kLimit - 5, 'x') + "\\"},
  };
  for (const auto& row : rows) EXPECT_EQ(row.result, expanded(row.path)) << row.path;
}

TEST(ExpandRelativePath, StartsInTheCurrentDirectory) {
  const vel::test::ScratchDirectory scratch;
  const InDirectory in(scratch.path());
  const std::string current = currentDirectory() + "\\";
  const auto levels = std::count(current.begin(), current.end(), '\\') - 1;
  std::string toRoot;
  for (auto i = levels; i > 0; --i) toRoot += "..\\";
  EXPECT_EQ(current, expanded(""));
  EXPECT_EQ(current + "a\\b\\", expanded("a\\.\\x\\..\\b\\c"));
  EXPECT_EQ(current.substr(0, 3), expanded(toRoot));
  EXPECT_EQ(current.substr(0, 3) + "a\\", expanded(toRoot + "a\\"));
  EXPECT_EQ(std::nullopt, expanded(toRoot + "..\\"));

  const std::string fitting(kLimit - current.size() - 1, 'x');
  EXPECT_EQ(current + fitting + "\\", expanded(fitting + "\\"));
  EXPECT_EQ(std::nullopt, expanded(fitting + "x\\"));
  // The result counts, not what it passes through.
  EXPECT_EQ(current, expanded(fitting + "xx\\..\\"));
}

TEST(ExpandRelativePath, StartsAtTheRootOfADrive) {
  const InDirectory in(std::filesystem::current_path().root_path());
  const std::string drive = currentDirectory();
  EXPECT_EQ(drive + "\\a\\", expanded("a\\"));
  EXPECT_EQ(std::nullopt, expanded("..\\"));
}

}  // namespace
