// Tests names of directories, operations on real ones by backslash names on every system, and the last error
// of each operation.
#include "filesys/test/directory_fixture.h"

#include <ctime>

namespace {

namespace fs = std::filesystem;
using enum VelEnErrorClass;
using testing::Each;
using namespace vel::test;

constexpr char kFailed[] = "(failed)";

const LastError kNotExpanded(DIRECTORY_EXPANSION_FAILED, IO_INVALID_NAME);
const LastError kNotDetached(DIRECTORY_COULD_NOT_DETACH, LOGIC);
const LastError kNotCreated(DIRECTORY_COULD_NOT_CREATE, IO_NOT_EXISTENT);
const LastError kNotRemoved(DIRECTORY_COULD_NOT_REMOVE, IO_INVALID_NAME);

std::string expanded(const std::string& path) {
  char buffer[VEL_MAX_PATH_LENGTH + 1];
  buffer[path.copy(buffer, VEL_MAX_PATH_LENGTH)] = '\0';
  if (VelClFileABase::expandRelativePath(buffer)) return buffer;
  EXPECT_STREQ("", buffer) << path;
  return kFailed;
}

TEST(RelativePath, IncludesAbsolutePathsThatNeedExpansion) {
  for (const char* path : {"a\\", "", "\\a\\", "C:/a", "C:\\a\\..\\b", "C:\\a.\\b"})
    EXPECT_TRUE(VelClFileABase::isRelativePath(path)) << path;
  for (const char* path : {"C:\\a\\", "C:\\.a\\", "/a/./b", "\\\\s\\h\\a"})
    EXPECT_FALSE(VelClFileABase::isRelativePath(path)) << path;
}

// fuzz/path_fuzz.cpp tests the components between the separators.
TEST(RelativePath, IsExpandedIfTheResultFits) {
  const vel::test::CurrentDirectory inRoot(fs::current_path().root_path());
  const std::string root = vel::test::backSlashed(fs::current_path().string()),
                    full = "\\\\s\\" + std::string(VEL_MAX_PATH_LENGTH - 5, 'x');
  const std::pair<std::string, std::string> rows[] = {
      {full, full + "\\"},        {full + "x", kFailed},
      {"..\\", kFailed},          {"", root},
      {"a\\", root + "a\\"},      {"\\\\s\\h\\a\\..\\", "\\\\s\\h\\"},
      {"\\\\s\\h\\..\\", kFailed}};
  for (const auto& [path, expected] : rows) EXPECT_EQ(expanded(path), expected) << path;
}

TEST(Directory, NameIsAbsoluteAndNormalized) {
  const std::string longest = "C:\\" + std::string(VEL_MAX_PATH_LENGTH - 4, 'x');
  auto rows = readTable(VEL_TEST_DATA "test/directory_names.tsv");
  for (const std::string& name : {longest, longest + "\\"}) rows.push_back({name, longest + "\\", "1"});
  for (const auto& row : rows) {
    const VelClDirectory directory(row[0].c_str());
    EXPECT_EQ(row.at(1), directory.getAsCString()) << row[0];
    EXPECT_EQ(row.at(2), std::to_string(directory.getNumOfSubDirs())) << row[0];
    EXPECT_EQ(kNoError, lastError(directory)) << row[0];
    EXPECT_EQ(row[1], VelClDirectory(VelClLocation(row[0].c_str(), false)).getAsCString());
  }
}

// A name that was cut to the limit could be that of another directory.
TEST(Directory, WithoutAnAbsoluteNameFailsInEveryOperation) {
  for (const std::string& name :
       {std::string("C:\\a\\..\\..\\"), "C:\\" + std::string(VEL_MAX_PATH_LENGTH - 3, 'x'),
        "C:\\" + std::string(100, 'x') + "\\..\\" + std::string(160, 'y')}) {
    VelClDirectory directory(name.c_str());
    EXPECT_STREQ("", directory);
    EXPECT_EQ(kNotExpanded, lastError(directory)) << name;
    EXPECT_THAT(
        (std::array{directory.detachLastSubDir(), directory.detachSubDirs(2), directory.setAsCurrent(),
                    directory.removeAll(true), directory.isExistent(), directory.create()}),
        Each(false));
    EXPECT_EQ(kNotCreated, lastError(directory));
    EXPECT_EQ(0, directory.getDateTimeOfCreation() | directory.getNumOfSubDirs());
  }
}

TEST(Directory, AttachesAndDetachesSubDirectories) {
  VelClDirectory directory("C:\\a");
  for (const auto& row : readTable(VEL_TEST_DATA "test/directory_steps.tsv")) {
    directory.attachSubDir(VelClLocation(row[0].c_str(), false));
    EXPECT_EQ(row.at(1), directory.getAsCString()) << row[0];
    EXPECT_EQ(kNoError, lastError(directory));
  }
  directory.attachSubDir(VelClLocation("..\\..\\..\\..\\", false));
  EXPECT_STREQ("", directory);
  EXPECT_EQ(kNotExpanded, lastError(directory));
  for (const std::string root : {"C:\\", "\\\\s\\h\\"}) {
    VelClDirectory deep((root + "a\\b").c_str());
    EXPECT_TRUE(deep.detachLastSubDir());
    EXPECT_EQ(root + "a\\", deep.getAsCString());
    EXPECT_EQ(outcome(deep.detachSubDirs(2), deep), kNotDetached);
    EXPECT_EQ(root, deep.getAsCString());
    EXPECT_EQ(outcome(deep.detachSubDirs(0), deep), kNoError);
  }
  VelClDirectory doubled("C:/a/");
  EXPECT_TRUE(doubled.detachLastSubDir());
  EXPECT_STREQ("C:\\a\\", doubled);
  const std::string name = "C:\\" + std::string(VEL_MAX_PATH_LENGTH - 6, 'x');
  VelClDirectory longest(name.c_str());
  for (const std::string& attached : {name + "\\y\\", std::string()}) {
    longest.attachSubDir(VelClLocation("y", false));
    EXPECT_EQ(attached, longest.getAsCString());
  }
}

using DirectoryTest = vel::test::DirectoryFixture;

TEST_F(DirectoryTest, IsRelativeToTheCurrentDirectory) {
  const vel::test::CurrentDirectory in(scratch_.path());
  const std::string current = vel::test::backSlashed(fs::current_path().string()) + "\\";
  for (const char* name : {"", "x\\..\\.\\", static_cast<const char*>(nullptr)})
    EXPECT_EQ(current, VelClDirectory(name).getAsCString());
  VelClDirectory sub("sub");
  EXPECT_EQ(outcome(sub.setAsCurrent(), sub), LastError(DIRECTORY_COULD_NOT_CHANGE, IO_NOT_EXISTENT));
  EXPECT_TRUE(sub.create());
  EXPECT_EQ(outcome(sub.setAsCurrent(), sub), kNoError);
  EXPECT_STREQ(sub, VelClDirectory());
}

TEST_F(DirectoryTest, IsCreatedWithItsParentsAndRemovedWhenEmpty) {
  VelClDirectory created = directory("a\\b"), parent = directory("a"), server("\\\\server");
  EXPECT_EQ(outcome(created.remove(), created), kNotRemoved);
  for (VelClDirectory* made : {&created, &created, &server}) EXPECT_TRUE(made->create());
  EXPECT_EQ(kNoError, lastError(created));
  EXPECT_TRUE(fs::is_directory(scratch_.path("a/b")));
  EXPECT_TRUE(created.isExistent());
  EXPECT_NEAR(static_cast<double>(std::time(nullptr)),
              static_cast<double>(created.getDateTimeOfLastModification()), 60);
  EXPECT_NE(0, VelClDirectory("C:\\").getDateTimeOfLastAccess());
  EXPECT_EQ(outcome(parent.remove(), parent), kNotRemoved);
  EXPECT_EQ(outcome(created.remove(), created), kNoError);
  EXPECT_TRUE(parent.removeAll(true));
}

// Intentional: a name with a drive and slashes gets a second final separator.
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

TEST_F(DirectoryTest, CannotBeCreatedBelowAFileNorRemoveOne) {
  scratch_.write("file", "text");
  VelClDirectory file = directory("file"), below = directory("file\\below");
  EXPECT_EQ(outcome(below.create(), below), kNotCreated);
  EXPECT_EQ(outcome(file.removeAll(true), file), kNotRemoved);
  EXPECT_TRUE(fs::exists(scratch_.path("file")));
}

// Intentional: a directory with a dot as its first or second character does not count as a sub-directory, so
// its contents are kept.
TEST_F(DirectoryTest, IsRemovedWithItsContentsUnlessASubDirectoryHasAnEarlyDot) {
  for (const std::string kept : {"", ".cache", "a.b", "..x"}) {
    for (const char* entry : {"tree/file", "tree/.hidden", "tree/a.c", "tree/sub/sub/file", "tree/sub/x.y"})
      scratch_.write(entry, "text");
    fs::create_directory(scratch_.path("tree/empty"));
    if (!kept.empty()) scratch_.write("tree/" + kept + "/file", "text");
    VelClDirectory tree = directory("tree");
    EXPECT_FALSE(tree.removeAll(false));
    EXPECT_EQ(kept.empty(), tree.removeAll(true)) << kept;
    EXPECT_EQ(kept.empty() ? kNoError : kNotRemoved, lastError(tree));
    EXPECT_NE(kept.empty(), fs::exists(scratch_.path("tree/" + kept + "/file")));
    EXPECT_NE(kept.empty(), tree.isExistent());
    EXPECT_FALSE(fs::exists(scratch_.path("tree/sub")));
    fs::remove_all(scratch_.path("tree"));
  }
}

// Systems differ in whether they remove a read-only file.
TEST_F(DirectoryTest, RemovalDoesNotMakeFilesWritable) {
  const std::string probe = scratch_.write("probe", "text"), file = scratch_.write("tree/sub/file", "text");
  for (const char* entry : {"probe", "tree\\sub\\file"}) VelClFile(name(entry), nullptr).setReadOnly(true);
  const bool removable = std::remove(probe.c_str()) == 0;
  EXPECT_EQ(removable, directory("tree").removeAll(true));
  EXPECT_EQ(!removable, fs::exists(file));
}

// The names of a directory and its entry together exceed the limit of a name.
TEST_F(DirectoryTest, WalkAndRemovalAcceptNamesOfAnyLength) {
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
