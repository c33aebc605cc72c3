// Directories by name and on disk, by back-slash names on every system, and the last error of each operation.
#include "filesys/test/directory_fixture.h"

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <fstream>

#include "platform/test/table.h"
namespace {

namespace fs = std::filesystem;
using enum VelEnErrorClass;
using vel::test::kNone;
using vel::test::Left;
using vel::test::left;
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

// Only the end of a component counts, and what is behind the last separator is dropped. Whether it fits is
// asked of the result, not of what it passes through.
TEST(RelativePath, IsExpandedFromItsRootOrTheCurrentDirectory) {
  const vel::test::ScratchDirectory scratch;
  const vel::test::CurrentDirectory in(scratch.path());
  const std::string current = vel::test::backSlashed(fs::current_path().string()) + "\\";
  const std::string root = current.substr(0, 3);
  std::string up;
  for (auto i = std::count(current.begin(), current.end(), '\\'); i > 1; --i) up += "..\\";
  const std::string fitting(kLimit - current.size() - 1, 'x'),
      full = "\\\\s\\" + std::string(kLimit - 5, 'x');
  const std::vector<std::string> rows[] = {{full, full + "\\"},
                                           {full + "x", kFailed},
                                           {"", current},
                                           {fitting + "x\\", kFailed},
                                           {up + "..\\", kFailed},
                                           {fitting + "xx\\..\\", current},
                                           {"a\\.\\x\\..\\b\\c", current + "a\\b\\"},
                                           {up + "a\\", root + "a\\"},
                                           {fitting + "\\", current + fitting + "\\"}};
  for (const auto& row : rows) EXPECT_EQ(row[1], expanded(row[0])) << row[0];
  for (const auto& row : readTable(VEL_TEST_DATA "test/relative_paths.tsv"))
    EXPECT_EQ(row.at(1), expanded(row[0])) << row[0];
  const vel::test::CurrentDirectory inRoot(fs::current_path().root_path());
  EXPECT_EQ(root + "a\\", expanded("a\\"));
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
    EXPECT_FALSE(directory.detachLastSubDir() || directory.detachSubDirs(2) || directory.setAsCurrent() ||
                 directory.removeAll(true) || directory.isExistent() || directory.create());
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
    EXPECT_FALSE(deep.detachSubDirs(2));
    EXPECT_EQ(kNotDetached, left(deep));
    EXPECT_EQ(root, deep.getAsCString());
    EXPECT_TRUE(deep.detachSubDirs(0));
    EXPECT_EQ(kNone, left(deep));
  }
  VelClDirectory doubled("C:/a/");
  for (const char* const above : {"C:\\a\\", "C:\\"}) {
    EXPECT_TRUE(doubled.detachLastSubDir());
    EXPECT_STREQ(above, doubled);
  }
  VelClDirectory longest(("C:\\" + std::string(kLimit - 6, 'x')).c_str());
  longest.attachSubDir(VelClLocation("y", false));
  EXPECT_EQ(kLimit, longest.getName().getLength());
  longest.attachSubDir(VelClLocation("z", false));
  EXPECT_STREQ("", longest);
}

using DirectoryTest = vel::test::DirectoryFixture;

TEST_F(DirectoryTest, StartsInTheCurrentDirectory) {
  const vel::test::CurrentDirectory in(scratch_.path());
  const std::string current = vel::test::backSlashed(fs::current_path().string()) + "\\";
  for (const char* name : {"", "x\\..\\.\\", static_cast<const char*>(nullptr)})
    EXPECT_EQ(current, VelClDirectory(name).getAsCString());
  VelClDirectory sub("sub");
  EXPECT_FALSE(sub.setAsCurrent());
  EXPECT_EQ(Left(DIRECTORY_COULD_NOT_CHANGE, IO_NOT_EXISTENT), left(sub));
  EXPECT_TRUE(sub.create() && sub.setAsCurrent());
  EXPECT_EQ(kNone, left(sub));
  EXPECT_STREQ(sub, VelClDirectory());
}

TEST_F(DirectoryTest, IsCreatedWithItsParentsAndRemovedWhenEmpty) {
  VelClDirectory created = directory("a\\b"), parent = directory("a");
  EXPECT_FALSE(created.remove());
  EXPECT_EQ(kNotRemoved, left(created));
  EXPECT_TRUE(created.create() && created.create() && VelClDirectory("\\\\server").create());
  EXPECT_EQ(kNone, left(created));
  EXPECT_TRUE(fs::is_directory(scratch_.path("a/b")) && created.isExistent());
  EXPECT_NEAR(static_cast<double>(std::time(nullptr)),
              static_cast<double>(created.getDateTimeOfLastModification()), 60);
  EXPECT_NE(0, VelClDirectory("C:\\").getDateTimeOfLastAccess());
  // With slashes, a name behind a drive gets one more separator.
  std::string slashed = typed("a/c/");
  std::ranges::replace(slashed, '\\', '/');
  VelClDirectory doubled(slashed.c_str());
  EXPECT_EQ(typed("a\\c\\\\"), doubled.getAsCString());
  EXPECT_TRUE(doubled.create() && fs::is_directory(scratch_.path("a/c")) && doubled.isExistent());
  EXPECT_NE(0, doubled.getDateTimeOfLastModification());
  EXPECT_TRUE(VelClDirectoryWalk(doubled).isValid());
  EXPECT_TRUE(doubled.removeAll(true) && !fs::exists(scratch_.path("a/c")));
  EXPECT_FALSE(parent.remove());
  EXPECT_EQ(kNotRemoved, left(parent));
  EXPECT_TRUE(created.remove() && parent.removeAll(true));
  EXPECT_EQ(kNone, left(created));
  scratch_.write("file", "text");
  VelClDirectory file = directory("file"), below = directory("file\\below");
  EXPECT_FALSE(below.create() || file.removeAll(true));
  EXPECT_EQ(kNotCreated, left(below));
  EXPECT_EQ(kNotRemoved, left(file));
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
    EXPECT_EQ(kept.empty(), !fs::exists(scratch_.path("tree/" + kept + "/file")) && !tree.isExistent());
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
