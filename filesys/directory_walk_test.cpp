// Walks over real directories: every entry once, with its attributes and the rules for names with dots.
#include <fstream>
#include <map>
#include <set>
#include <string>
#include <utility>

#include "filesys/test/directory_fixture.h"

namespace {

namespace fs = std::filesystem;
using vel::test::backSlashed;

class DirectoryWalkTest : public vel::test::DirectoryFixture {
 protected:
  VelClDirectory all() const { return directory(""); }
};

TEST_F(DirectoryWalkTest, TellsWhatEntriesAre) {
  enum Bits { kDirectory = 1, kCurrent = 2, kParent = 4, kSub = 8, kReadOnly = 16 };
  const std::map<std::string, int> expected = {{".", kDirectory | kCurrent},
                                               {"..", kDirectory | kParent},
                                               {"..x", kDirectory | kParent},
                                               {".cache", kDirectory},
                                               {"a.b", kDirectory},
                                               {"ab.c", kDirectory | kSub},
                                               {"d", kDirectory | kSub},
                                               {"..file", 0},
                                               {"file", 0},
                                               {"only", kReadOnly}};
  for (const auto& [name, bits] : expected)
    if ((bits & kDirectory) == 0)
      scratch_.write(name, "text");
    else
      fs::create_directory(scratch_.path(name));
  VelClFile only(VelClFilename(scratch_.path("only").c_str()), nullptr);
  only.setReadOnly(true);
  std::map<std::string, int> found;
  VelClDirectoryWalk walk(all());
  for (; walk.isValid(); walk.setToNext()) {
    const int bits = (walk.isDirectory() ? kDirectory : 0) | (walk.isCurrentDirectory() ? kCurrent : 0) |
                     (walk.isParentDirectory() ? kParent : 0) | (walk.isSubDirectory() ? kSub : 0) |
                     (walk.isReadOnly() ? kReadOnly : 0);
    EXPECT_TRUE(found.emplace(walk.getNameWithoutPath(), bits).second) << walk.getNameWithoutPath();
    EXPECT_NE(walk.isDirectory(), walk.isFile());
    EXPECT_EQ(backSlashed(scratch_.path()) + "\\" + walk.getNameWithoutPath(), walk.getNameWithPath());
    const VelClFile file(VelClFilename(walk.getNameWithPath()), nullptr);
    EXPECT_EQ(walk.isFile() && walk.isHidden(), walk.isFile() && file.isHidden());
    EXPECT_EQ(found.size() == 1, walk.isCurrentDirectory());
  }
  EXPECT_EQ(expected, found);
  EXPECT_EQ(0U, walk.getLastError().errorId);
  only.setReadOnly(false);
}

TEST_F(DirectoryWalkTest, AnswersNothingBehindTheEnd) {
  const std::string missing = scratch_.path("missing");
  const std::string file = scratch_.write("file", "text");
  for (const std::string& name : {missing, file, missing + "/" + std::string(300, 'x')}) {
    VelClDirectoryWalk walk(VelClLocation(name.c_str(), false));
    EXPECT_FALSE(walk.isValid() || walk.setToNext());
    EXPECT_EQ(DIRWALK_COULD_NOT_INIT, walk.getLastError().errorId) << name;
    EXPECT_EQ(VelEnErrorClass::IO_PROBLEM, walk.getLastError().errorClass);
  }
  VelClDirectoryWalk walk(all());
  while (walk.setToNext()) {
  }
  EXPECT_FALSE(walk.isValid() || walk.setToNext() || walk.isDirectory() || walk.isFile() || walk.isHidden() ||
               walk.isReadOnly() || walk.isCurrentDirectory() || walk.isParentDirectory() ||
               walk.isSubDirectory() || walk.matchesWildcardPattern("*"));
  EXPECT_STREQ("", walk.getNameWithoutPath());
  EXPECT_EQ(0U, walk.getLastError().errorId);
}

TEST_F(DirectoryWalkTest, MatchesPatternsByTheStyleOfTheDirectory) {
  scratch_.write("Tool.INI", "");
  const auto matched = [](const VelClLocation& location, const char* pattern) {
    VelClDirectoryWalk walk(location);
    while (walk.isValid() && !walk.isFile()) walk.setToNext();
    return walk.matchesWildcardPattern(pattern);
  };
  const VelClLocation msdos = all().getName();
  EXPECT_TRUE(matched(msdos, "*.ini"));
  EXPECT_FALSE(matched(msdos, "*.in"));
  const vel::test::CurrentDirectory in(fs::path(scratch_.path()).parent_path());
  const std::string slashed = "./" + fs::path(scratch_.path()).filename().string();
  EXPECT_FALSE(matched(VelClLocation(slashed.c_str(), false), "*.ini"));
  EXPECT_TRUE(matched(VelClLocation(slashed.c_str(), false), "*.INI"));
}

TEST_F(DirectoryWalkTest, ListsTheCurrentDirectoryForAnEmptyName) {
  scratch_.write("file", "");
  const vel::test::CurrentDirectory in(scratch_.path());
  std::set<std::string> names;
  for (VelClDirectoryWalk walk(VelClLocation("", false)); walk.isValid(); walk.setToNext())
    names.insert(walk.getNameWithPath());
  EXPECT_EQ((std::set<std::string>{".", "..", "file"}), names);
}

// Directory and entry together exceed a name's length.
TEST_F(DirectoryWalkTest, ShowsWholeNamesOfAnyLength) {
  const std::string prefix = fs::path::preferred_separator == '\\' ? "\\\\?\\" : "";
  const std::string longest(255, 'f');
  const VelClDirectory deep = directory(std::string(200, 'd'));
  const fs::path path = prefix + scratch_.path(std::string(200, 'd'));
  ASSERT_TRUE(fs::create_directory(path));
  std::ofstream(path / longest) << "text";
  VelClDirectoryWalk walk(deep);
  while (walk.isValid() && !walk.isFile()) walk.setToNext();
  EXPECT_EQ(longest, walk.getNameWithoutPath());
  EXPECT_EQ(deep.getAsCString() + longest, walk.getNameWithPath());
}

TEST_F(DirectoryWalkTest, ListsEveryEntryOfALargeDirectoryOnce) {
  constexpr int kCount = 2000;
  for (int i = 0; i < kCount; ++i) std::ofstream(scratch_.path("entry" + std::to_string(i)));
  std::set<std::string> names;
  int steps = 0;
  for (VelClDirectoryWalk walk(all()); walk.isValid(); walk.setToNext(), ++steps)
    names.insert(walk.getNameWithoutPath());
  EXPECT_EQ(kCount + 2, steps);
  EXPECT_EQ(static_cast<size_t>(kCount) + 2, names.size());
  EXPECT_TRUE(all().removeAll(true));
}

}  // namespace
