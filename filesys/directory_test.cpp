// Directories by name and on disk, by back-slash names on every system, and the last error of each operation.
#include "filesys/test/directory_fixture.h"

#include <cstdio>
#include <ctime>
#include <fstream>
#include <string>
#include <utility>

namespace {

namespace fs = std::filesystem;
using enum VelEnErrorClass;
using vel::test::backSlashed;
using Left = std::pair<uint32_t, VelEnErrorClass>;

constexpr size_t kLimit = VEL_MAX_PATH_LENGTH;

Left left(const VelClDirectory& directory) {
  return {directory.getLastError().errorId, directory.getLastError().errorClass};
}

const Left kNone(VEL_NO_ERROR, UNKNOWN);
const Left kNotExpanded(DIRECTORY_EXPANSION_FAILED, IO_INVALID_NAME);
const Left kNotDetached(DIRECTORY_COULD_NOT_DETACH, LOGIC);
const Left kNotCreated(DIRECTORY_COULD_NOT_CREATE, IO_NOT_EXISTENT);
const Left kNotRemoved(DIRECTORY_COULD_NOT_REMOVE, IO_INVALID_NAME);

TEST(Directory, NameIsAbsoluteAndNormalized) {
  const std::string long258 = "C:\\" + std::string(kLimit - 4, 'x');
  const struct {
    std::string name, absolute;
    unsigned int subDirs;
  } rows[] = {{"C:\\.cache\\a.b", "C:\\.cache\\a.b\\", 2},
              {"\\\\s\\h", "\\\\s\\h\\", 3},
              {"\\\\s\\h\\a/b", "\\\\s\\h\\a\\b\\", 5},
              {long258, long258 + "\\", 1},
              {"C:\\x\\y\\..\\z", "C:\\x\\z\\", 2},
              {"C:\\", "C:\\", 0},
              {long258 + "\\", long258 + "\\", 1},
              {"C:", "C:\\", 0},
              {"C:/x/./y/", "C:\\x\\y\\", 2}};
  for (const auto& row : rows) {
    const VelClDirectory directory(row.name.c_str());
    EXPECT_STREQ(row.absolute.c_str(), directory) << row.name;
    EXPECT_EQ(row.subDirs, directory.getNumOfSubDirs()) << row.name;
    EXPECT_EQ(kNone, left(directory)) << row.name;
    EXPECT_EQ(row.absolute, VelClDirectory(VelClLocation(row.name.c_str(), false)).getAsCString());
  }
}

// Cut to the limit, a name could be that of another directory.
TEST(Directory, WithoutAbsoluteNameDoesNothing) {
  for (const std::string& name :
       {std::string("C:\\a\\..\\..\\"), std::string("\\\\s\\h\\..\\"), "C:\\" + std::string(kLimit - 3, 'x'),
        std::string(1000, 'x'), "C:\\" + std::string(100, 'x') + "\\..\\" + std::string(160, 'y')}) {
    VelClDirectory directory(name.c_str());
    EXPECT_STREQ("", directory);
    EXPECT_EQ(kNotExpanded, left(directory)) << name;
    EXPECT_EQ(0U, directory.getNumOfSubDirs());
    EXPECT_FALSE(directory.detachLastSubDir() || directory.detachSubDirs(2));
    EXPECT_EQ(kNotDetached, left(directory));
    EXPECT_FALSE(directory.create());
    EXPECT_EQ(kNotCreated, left(directory));
    EXPECT_FALSE(directory.setAsCurrent() || directory.removeAll(true) || directory.isExistent());
    EXPECT_EQ(0, directory.getDateTimeOfCreation() | directory.getDateTimeOfLastModification());
  }
}

TEST(Directory, StartsInTheCurrentDirectory) {
  const vel::test::ScratchDirectory scratch;
  const vel::test::CurrentDirectory in(scratch.path());
  const std::string current = backSlashed(fs::current_path().string()) + "\\";
  for (const char* name : {"", "x\\..\\.\\", static_cast<const char*>(nullptr)})
    EXPECT_EQ(current, VelClDirectory(name).getAsCString());
  VelClDirectory sub("sub");
  EXPECT_FALSE(sub.setAsCurrent());
  EXPECT_EQ(Left(DIRECTORY_COULD_NOT_CHANGE, IO_NOT_EXISTENT), left(sub));
  EXPECT_TRUE(sub.create() && sub.setAsCurrent());
  EXPECT_EQ(kNone, left(sub));
  EXPECT_STREQ(sub, VelClDirectory());
  fs::current_path(scratch.path());
}

TEST(Directory, GoesDownAndUp) {
  VelClDirectory directory("C:\\a");
  const struct {
    const char *sub, *result;
  } rows[] = {{"b\\c", "C:\\a\\b\\c\\"},
              {"..\\d/e", "C:\\a\\b\\d\\e\\"},
              {"..\\..\\..\\", "C:\\a\\"},
              {"\\\\server\\share\\x", "C:\\a\\\\x\\"},
              {"..\\..\\..\\", "C:\\"}};
  for (const auto& row : rows) {
    directory.attachSubDir(VelClLocation(row.sub, false));
    EXPECT_STREQ(row.result, directory) << row.sub;
    EXPECT_EQ(kNone, left(directory));
  }
  directory.attachSubDir(VelClLocation("a\\b\\c", false));
  EXPECT_TRUE(directory.detachSubDirs(0) && directory.detachLastSubDir());
  EXPECT_STREQ("C:\\a\\b\\", directory);
  EXPECT_FALSE(directory.detachSubDirs(3));
  EXPECT_EQ(kNotDetached, left(directory));
  EXPECT_STREQ("C:\\", directory);
  EXPECT_TRUE(directory.detachSubDirs(0));
  EXPECT_EQ(kNone, left(directory));
  directory.attachSubDir(VelClLocation("..\\", false));
  EXPECT_STREQ("", directory);
  EXPECT_EQ(kNotExpanded, left(directory));
  VelClDirectory share("\\\\s\\h\\a\\");
  EXPECT_TRUE(share.detachLastSubDir());
  EXPECT_STREQ("\\\\s\\h\\", share);
  EXPECT_FALSE(share.detachLastSubDir());
  VelClDirectory longest(("C:\\" + std::string(kLimit - 6, 'x')).c_str());
  longest.attachSubDir(VelClLocation("y", false));
  EXPECT_EQ(kLimit, longest.getName().getLength());
  longest.attachSubDir(VelClLocation("z", false));
  EXPECT_STREQ("", longest);
}

using DirectoryTest = vel::test::DirectoryFixture;

TEST_F(DirectoryTest, IsCreatedWithItsParents) {
  VelClDirectory created = directory("new1\\new2\\");
  EXPECT_TRUE(created.create());
  EXPECT_TRUE(fs::is_directory(scratch_.path("new1/new2")));
  EXPECT_TRUE(created.create() && VelClDirectory("\\\\server").create());
  EXPECT_EQ(kNone, left(created));
  EXPECT_TRUE(created.isExistent() && created.isDirectory() && !created.isFile());
  EXPECT_NEAR(static_cast<double>(std::time(nullptr)),
              static_cast<double>(created.getDateTimeOfLastModification()), 60);
  EXPECT_NE(0, VelClDirectory("C:\\").getDateTimeOfLastAccess());
  scratch_.write("new1/file", "text");
  VelClDirectory below = directory("new1\\file\\below");
  EXPECT_FALSE(below.create());
  EXPECT_EQ(kNotCreated, left(below));
}

TEST_F(DirectoryTest, IsRemovedWhenEmpty) {
  VelClDirectory removed = directory("a\\b");
  EXPECT_FALSE(removed.remove());
  EXPECT_EQ(kNotRemoved, left(removed));
  EXPECT_TRUE(removed.create());
  VelClDirectory parent = directory("a");
  EXPECT_FALSE(parent.remove());
  EXPECT_EQ(kNotRemoved, left(parent));
  EXPECT_TRUE(removed.remove() && parent.removeAll(true));
  EXPECT_EQ(kNone, left(removed));
  scratch_.write("file", "text");
  VelClDirectory file = directory("file");
  EXPECT_FALSE(file.removeAll(true));
  EXPECT_EQ(kNotRemoved, left(file));
  EXPECT_TRUE(fs::exists(scratch_.path("file")));
}

TEST_F(DirectoryTest, IsRemovedWithItsContents) {
  for (const char* entry :
       {"tree/file", "tree/.hidden", "tree/a.b", "tree/sub/sub/file", "tree/sub/x.y", "beside/file"})
    scratch_.write(entry, "text");
  fs::create_directory(scratch_.path("tree/empty"));
  VelClDirectory tree = directory("tree");
  EXPECT_FALSE(tree.removeAll(false));
  EXPECT_TRUE(tree.removeAll(true));
  EXPECT_EQ(kNone, left(tree));
  EXPECT_FALSE(fs::exists(scratch_.path("tree")));
  EXPECT_TRUE(fs::exists(scratch_.path("beside/file")));
}

// A dot as first or second character makes it no sub-directory.
TEST_F(DirectoryTest, KeepsDirectoriesWithEarlyDots) {
  for (const char* kept : {".cache", "a.b", "..x"}) {
    scratch_.write(std::string("tree/") + kept + "/file", "text");
    scratch_.write("tree/other/file", "text");
    VelClDirectory tree = directory("tree");
    EXPECT_FALSE(tree.removeAll(true)) << kept;
    EXPECT_EQ(kNotRemoved, left(tree));
    EXPECT_TRUE(fs::exists(scratch_.path("tree") + "/" + kept + "/file"));
    EXPECT_FALSE(fs::exists(scratch_.path("tree/other")));
    fs::remove_all(scratch_.path("tree"));
  }
}

// Whether a read-only file can be removed as it is, is the system's answer.
TEST_F(DirectoryTest, DoesNotMakeFilesWritable) {
  const std::string probe = scratch_.write("probe", "text");
  const std::string file = scratch_.write("tree/sub/file", "text");
  for (const std::string& name : {probe, file})
    VelClFile(VelClFilename(name.c_str()), nullptr).setReadOnly(true);
  const bool removable = std::remove(probe.c_str()) == 0;
  EXPECT_EQ(removable, directory("tree").removeAll(true));
  EXPECT_EQ(!removable, fs::exists(file));
}

TEST_F(DirectoryTest, RemovesNamesOfAnyLength) {
  fs::path path = vel::test::unlimited(scratch_.path("tree"));
  for (int level = 0; level < 5; ++level, path /= std::string(200, 'd')) {
    ASSERT_TRUE(fs::create_directory(path));
    std::ofstream(path / std::string(255, 'f')) << "text";
    ASSERT_TRUE(fs::exists(path / std::string(255, 'f')));
  }
  EXPECT_TRUE(directory("tree").removeAll(true));
  EXPECT_FALSE(fs::exists(scratch_.path("tree")));
}

}  // namespace
