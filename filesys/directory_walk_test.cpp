// Tests walks over real directories: each entry is visited once, with its attributes and by the rules for
// names with dots.
#include "filesys/test/directory_fixture.h"

namespace {

namespace fs = std::filesystem;

using DirectoryWalkTest = vel::test::DirectoryFixture;

TEST_F(DirectoryWalkTest, ClassifiesEntries) {
  // The flags are directory, current, parent, sub-directory and read-only.
  const std::map<std::string, std::string> expected = {
      {".", "dc"},    {"..", "dp"}, {"..x", "dp"},  {".cache", "d"}, {"a.b", "d"},
      {"ab.c", "ds"}, {"d", "ds"},  {"..file", ""}, {"file", ""},    {"only", "r"}};
  for (const auto& [name, bits] : expected)
    if (bits.starts_with('d'))
      fs::create_directory(scratch_.path(name));
    else
      scratch_.write(name, "text");
  VelClFile(name("only"), nullptr).setReadOnly(true);
  std::map<std::string, std::string> found;
  VelClDirectoryWalk walk(directory(""));
  for (; walk.isValid(); walk.setToNext()) {
    const std::string bits = std::string(walk.isDirectory() ? "d" : "") +
                             (walk.isCurrentDirectory() ? "c" : "") + (walk.isParentDirectory() ? "p" : "") +
                             (walk.isSubDirectory() ? "s" : "") + (walk.isReadOnly() ? "r" : "");
    EXPECT_TRUE(found.emplace(walk.getNameWithoutPath(), bits).second) << walk.getNameWithoutPath();
    EXPECT_NE(walk.isDirectory(), walk.isFile());
    EXPECT_EQ(typed(walk.getNameWithoutPath()), walk.getNameWithPath());
    const VelClFile file(VelClFilename(walk.getNameWithPath()), nullptr);
    if (walk.isFile()) {
      EXPECT_EQ(walk.isHidden(), file.isHidden());
    }
    EXPECT_EQ(found.size() == 1, walk.isCurrentDirectory());
  }
  EXPECT_EQ(expected, found);
  EXPECT_EQ(0U, walk.getLastError().errorId);
  EXPECT_THAT((std::array{walk.setToNext(), walk.isDirectory(), walk.isFile(), walk.isHidden(),
                          walk.isReadOnly(), walk.isCurrentDirectory(), walk.isParentDirectory(),
                          walk.isSubDirectory(), walk.matchesWildcardPattern("*")}),
              testing::Each(false));
  EXPECT_STREQ("", walk.getNameWithoutPath());
  EXPECT_EQ(0U, walk.getLastError().errorId);
}

TEST_F(DirectoryWalkTest, FailsForMissingDirectoriesAndFiles) {
  const std::string missing = scratch_.path("missing"), file = scratch_.write("file", "text");
  for (const std::string& name : {missing, file, missing + "/" + std::string(300, 'x')}) {
    VelClDirectoryWalk walk(VelClLocation(name.c_str(), false));
    EXPECT_FALSE(walk.isValid());
    EXPECT_FALSE(walk.setToNext());
    EXPECT_EQ(vel::test::LastError(DIRWALK_COULD_NOT_INIT, VelEnErrorClass::IO_PROBLEM),
              vel::test::lastError(walk))
        << name;
  }
}

TEST_F(DirectoryWalkTest, MatchesPatternsByTheStyleOfTheDirectory) {
  scratch_.write("Tool.INI", "");
  const auto matches = [](const VelClLocation& location, const char* pattern) {
    VelClDirectoryWalk walk(location);
    while (walk.isValid() && !walk.isFile()) walk.setToNext();
    return walk.matchesWildcardPattern(pattern);
  };
  EXPECT_TRUE(matches(directory("").getName(), "*.ini"));
  EXPECT_FALSE(matches(directory("").getName(), "*.in"));
  const vel::test::CurrentDirectory in(fs::path(scratch_.path()).parent_path());
  const VelClLocation slashed(("./" + fs::path(scratch_.path()).filename().string()).c_str(), false);
  EXPECT_TRUE(matches(slashed, "*.INI"));
  EXPECT_FALSE(matches(slashed, "*.ini"));
}

TEST_F(DirectoryWalkTest, ListsEveryEntryOfALargeDirectoryOnce) {
  std::multiset<std::string> expected = {".", ".."}, names;
  for (int i = 0; i < 2000; ++i) std::ofstream(scratch_.path(*expected.insert("entry" + std::to_string(i))));
  const vel::test::CurrentDirectory in(scratch_.path());
  // An empty name is the current directory.
  for (VelClDirectoryWalk walk(VelClLocation("", false)); walk.isValid(); walk.setToNext())
    names.insert(walk.getNameWithPath());
  EXPECT_EQ(expected, names);
}

}  // namespace
