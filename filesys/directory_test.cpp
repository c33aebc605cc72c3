// Directories by name and on disk, by back-slash names on every system, and the last error of each operation.
#include "filesys/test/directory_fixture.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <ctime>
#include <fstream>

#include "platform/test/table.h"
namespace {

namespace fs = std::filesystem;
using enum VelEnErrorClass;
using testing::Each;
using vel::test::kNone;
using vel::test::Left;
using vel::test::left;
using vel::test::outcome;
using vel::test::readTable;

constexpr size_t kLimit = VEL_MAX_PATH_LENGTH;
constexpr char kFailed[] = "(failed)";

const Left kNotExpanded(DIRECTORY_EXPANSION_FAILED, IO_INVALID_NAME);
const Left kNotDetached(DIRECTORY_COULD_NOT_DETACH, LOGIC);
const Left kNotCreated(DIRECTORY_COULD_NOT_CREATE, IO_NOT_EXISTENT);
const Left kNotRemoved(DIRECTORY_COULD_NOT_REMOVE, IO_INVALID_NAME);

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

// What is between the separators is fuzz/path_fuzz.cpp's matter.
TEST(RelativePath, IsExpandedWhereTheResultFits) {
  const vel::test::CurrentDirectory inRoot(fs::current_path().root_path());
  const std::string root = vel::test::backSlashed(fs::current_path().string()),
                    full = "\\\\s\\" + std::string(kLimit - 5, 'x');
  const std::pair<std::string, std::string> rows[] = {
      {full, full + "\\"},        {full + "x", kFailed},
      {"..\\", kFailed},          {"", root},
      {"a\\", root + "a\\"},      {"\\\\s\\h\\a\\..\\", "\\\\s\\h\\"},
      {"\\\\s\\h\\..\\", kFailed}};
  for (const auto& [path, expected] : rows) EXPECT_EQ(expanded(path), expected) << path;
}

TEST(Directory, NameIsAbsoluteAndNormalized) {
  const std::string longest = "C:\\" + std::string(kLimit - 4, 'x');
  auto rows = readTable(VEL_TEST_DATA "test/directory_names.tsv");
  for (const std::string& name : {longest, longest + "\\"}) rows.push_back({name, longest + "\\", "1"});
  for (const auto& row : rows) {
    const VelClDirectory directory(row[0].c_str());
    EXPECT_EQ(row.at(1), directory.getAsCString()) << row[0];
    EXPECT_EQ(row.at(2), std::to_string(directory.getNumOfSubDirs())) << row[0];
    EXPECT_EQ(kNone, left(directory)) << row[0];
    EXPECT_EQ(row[1], VelClDirectory(VelClLocation(row[0].c_str(), false)).getAsCString());
  }
}

// Cut to the limit, a name could be that of another directory.
TEST(Directory, WithoutAbsoluteNameDoesNothing) {
  for (const std::string& name : {std::string("C:\\a\\..\\..\\"), "C:\\" + std::string(kLimit - 3, 'x'),
                                  "C:\\" + std::string(100, 'x') + "\\..\\" + std::string(160, 'y')}) {
    VelClDirectory directory(name.c_str());
    EXPECT_STREQ("", directory);
    EXPECT_EQ(kNotExpanded, left(directory)) << name;
    EXPECT_THAT(
        (std::array{directory.detachLastSubDir(), directory.detachSubDirs(2), directory.setAsCurrent(),
                    directory.removeAll(true), directory.isExistent(), directory.create()}),
        Each(false));
    EXPECT_EQ(kNotCreated, left(directory));
    EXPECT_EQ(0, directory.getDateTimeOfCreation() | directory.getNumOfSubDirs());
  }
}

TEST(Directory, GoesDownAndUp) {
  VelClDirectory directory("C:\\a");
  for (const auto& row : readTable(VEL_TEST_DATA "test/directory_steps.tsv")) {
    directory.attachSubDir(VelClLocation(row[0].c_str(), false));
    EXPECT_EQ(row.at(1), directory.getAsCString()) << row[0];
    EXPECT_EQ(kNone, left(directory));
  }
  directory.attachSubDir(VelClLocation("..\\..\\..\\..\\", false));
  EXPECT_STREQ("", directory);
  EXPECT_EQ(kNotExpanded, left(directory));
  for (const std::string root : {"C:\\", "\\\\s\\h\\"}) {
    VelClDirectory deep((root + "a\\b").c_str());
    EXPECT_TRUE(deep.detachLastSubDir());
    EXPECT_EQ(root + "a\\", deep.getAsCString());
    EXPECT_EQ(outcome(deep.detachSubDirs(2), deep), kNotDetached);
    EXPECT_EQ(root, deep.getAsCString());
    EXPECT_EQ(outcome(deep.detachSubDirs(0), deep), kNone);
  }
  VelClDirectory doubled("C:/a/");
  EXPECT_TRUE(doubled.detachLastSubDir());
  EXPECT_STREQ("C:\\a\\", doubled);
  const std::string name = "C:\\" + std::string(kLimit - 6, 'x');
  VelClDirectory longest(name.c_str());
  for (const std::string& attached : {name + "\\y\\", std::string()}) {
    longest.attachSubDir(VelClLocation("y", false));
    EXPECT_EQ(attached, longest.getAsCString());
  }
}

using DirectoryTest = vel::test::DirectoryFixture;

TEST_F(DirectoryTest, StartsInTheCurrentDirectory) {
  const vel::test::CurrentDirectory in(scratch_.path());
  const std::string current = vel::test::backSlashed(fs::current_path().string()) + "\\";
  for (const char* name : {"", "x\\..\\.\\", static_cast<const char*>(nullptr)})
    EXPECT_EQ(current, VelClDirectory(name).getAsCString());
  VelClDirectory sub("sub");
  EXPECT_EQ(outcome(sub.setAsCurrent(), sub), Left(DIRECTORY_COULD_NOT_CHANGE, IO_NOT_EXISTENT));
  EXPECT_TRUE(sub.create());
  EXPECT_EQ(outcome(sub.setAsCurrent(), sub), kNone);
  EXPECT_STREQ(sub, VelClDirectory());
}

TEST_F(DirectoryTest, IsCreatedWithItsParentsAndRemovedWhenEmpty) {
  VelClDirectory created = directory("a\\b"), parent = directory("a"), server("\\\\server");
  EXPECT_EQ(outcome(created.remove(), created), kNotRemoved);
  for (VelClDirectory* made : {&created, &created, &server}) EXPECT_TRUE(made->create());
  EXPECT_EQ(kNone, left(created));
  EXPECT_TRUE(fs::is_directory(scratch_.path("a/b")));
  EXPECT_TRUE(created.isExistent());
  EXPECT_NEAR(static_cast<double>(std::time(nullptr)),
              static_cast<double>(created.getDateTimeOfLastModification()), 60);
  EXPECT_NE(0, VelClDirectory("C:\\").getDateTimeOfLastAccess());
  EXPECT_EQ(outcome(parent.remove(), parent), kNotRemoved);
  EXPECT_EQ(outcome(created.remove(), created), kNone);
  EXPECT_TRUE(parent.removeAll(true));
}

// With slashes, a name behind a drive gets one more separator.
TEST_F(DirectoryTest, IsUsableWithADoubledSeparator) {
  std::string slashed = typed("a/c/");
  std::ranges::replace(slashed, '\\', '/');
  VelClDirectory doubled(slashed.c_str());
  EXPECT_EQ(typed("a\\c\\\\"), doubled.getAsCString());
  EXPECT_TRUE(doubled.create());
  EXPECT_TRUE(doubled.isExistent());
  EXPECT_NE(0, doubled.getDateTimeOfLastModification());
  EXPECT_TRUE(VelClDirectoryWalk(doubled).isValid());
  EXPECT_TRUE(doubled.removeAll(true));
  EXPECT_FALSE(fs::exists(scratch_.path("a/c")));
}

TEST_F(DirectoryTest, IsNoFile) {
  scratch_.write("file", "text");
  VelClDirectory file = directory("file"), below = directory("file\\below");
  EXPECT_EQ(outcome(below.create(), below), kNotCreated);
  EXPECT_EQ(outcome(file.removeAll(true), file), kNotRemoved);
  EXPECT_TRUE(fs::exists(scratch_.path("file")));
}

// A dot as first or second character makes it no sub-directory, and its contents are kept.
TEST_F(DirectoryTest, IsRemovedWithItsContentsUnlessThereAreDirectoriesWithEarlyDots) {
  for (const std::string kept : {"", ".cache", "a.b", "..x"}) {
    for (const char* entry : {"tree/file", "tree/.hidden", "tree/a.c", "tree/sub/sub/file", "tree/sub/x.y"})
      scratch_.write(entry, "text");
    fs::create_directory(scratch_.path("tree/empty"));
    if (!kept.empty()) scratch_.write("tree/" + kept + "/file", "text");
    VelClDirectory tree = directory("tree");
    EXPECT_FALSE(tree.removeAll(false));
    EXPECT_EQ(kept.empty(), tree.removeAll(true)) << kept;
    EXPECT_EQ(kept.empty() ? kNone : kNotRemoved, left(tree));
    EXPECT_NE(kept.empty(), fs::exists(scratch_.path("tree/" + kept + "/file")));
    EXPECT_NE(kept.empty(), tree.isExistent());
    EXPECT_FALSE(fs::exists(scratch_.path("tree/sub")));
    fs::remove_all(scratch_.path("tree"));
  }
}

// Whether a read-only file can be removed as it is, is the system's answer.
TEST_F(DirectoryTest, DoesNotMakeFilesWritable) {
  const std::string probe = scratch_.write("probe", "text"), file = scratch_.write("tree/sub/file", "text");
  for (const char* entry : {"probe", "tree\\sub\\file"}) VelClFile(name(entry), nullptr).setReadOnly(true);
  const bool removable = std::remove(probe.c_str()) == 0;
  EXPECT_EQ(removable, directory("tree").removeAll(true));
  EXPECT_EQ(!removable, fs::exists(file));
}

// Directory and entry together exceed a name's length.
TEST_F(DirectoryTest, ShowsAndRemovesNamesOfAnyLength) {
  const std::string longest(255, 'f');
  fs::path path = vel::test::unlimited(scratch_.path("tree"));
  for (int level = 0; level < 5; ++level, path /= std::string(200, 'd')) {
    ASSERT_TRUE(fs::create_directory(path));
    ASSERT_TRUE((std::ofstream(path / longest) << "text").flush());
  }
  {
    VelClDirectoryWalk walk(directory("tree"));
    while (walk.isValid() && !walk.isFile()) walk.setToNext();
    EXPECT_EQ(typed("tree\\") + longest, walk.getNameWithPath());
  }
  EXPECT_TRUE(directory("tree").removeAll(true));
  EXPECT_FALSE(fs::exists(scratch_.path("tree")));
}

}  // namespace
