// Tests that removing a root never removes its contents, under whatever name.
#include "filesys/test/directory_fixture.h"
#include "platform/test/own_root.h"

namespace {

namespace fs = std::filesystem;

constexpr char kShare[] = "\\\\srv\\share";

/// Calls `action` with `begin` and every sequence of at most `pieces` pieces after it.
void forEachSpelling(int pieces, const std::string& begin,
                     const std::function<void(const std::string&)>& action) {
  action(begin);
  if (pieces == 0) return;
  for (const char* piece : {"\\", "/", ".", "..", "x"}) forEachSpelling(pieces - 1, begin + piece, action);
}

/// Holds the objects, because building a directory from its own name again can change the name.
using Directories = std::map<std::string, VelClDirectory>;

Directories directoriesOf(const std::vector<std::string>& beginnings) {
  const bool hasDrives = fs::path::preferred_separator == '\\';
  Directories directories;
  const auto add = [&](const VelClDirectory& directory) {
    const std::string name = directory.getAsCString();
    // Directories of other drives must not be touched.
    if (!hasDrives || name.find(beginnings[0]) != std::string::npos) directories.emplace(name, directory);
  };
  const auto addNamed = [&](const std::string& name) { add(VelClDirectory(name.c_str())); };
  for (const std::string& beginning : beginnings)
    forEachSpelling(beginning == beginnings[0] ? 5 : 4, beginning, addNamed);
  if (!hasDrives) forEachSpelling(4, kShare, addNamed);
  forEachSpelling(4, "", [&](const std::string& name) {
    VelClDirectory directory((beginnings[hasDrives ? 0 : 1] + "\\").c_str());
    directory.attachSubDir(VelClLocation(name.c_str(), false));
    add(directory);
    if (directory.detachLastSubDir()) add(directory);
  });
  return directories;
}

/// Runs in the root, which is the current directory. Returns the names whose removal deleted contents of a
/// root or share, or left the directory although it reported success.
std::string removeUnderEveryName(const std::vector<std::string>& beginnings) {
  std::string complaints;
  std::map<bool, int> counts;
  std::error_code ignored;
  for (auto& [name, directory] : directoriesOf(beginnings)) {
    for (const fs::path file : {"file", "kept/file", "srv/share/file", "x/file", "x/x/file"}) {
      fs::create_directories(file.parent_path(), ignored);
      std::ofstream(file) << "kept";
    }
    const bool isRemoved = directory.removeAll(true);
    ++counts[isRemoved];
    for (const char* file : {"file", "kept/file", "srv/share/file"})
      if (!fs::exists(file, ignored)) complaints += name + " removed " + file + "\n";
    if (isRemoved && directory.isExistent()) complaints += name + " is still there\n";
    if (complaints.size() > 1000) break;
  }
  if (counts[true] < 20 || counts[false] < 20) complaints += "too few names\n";
  return complaints;
}

using RootRemoval = vel::test::DirectoryFixture;

TEST_F(RootRemoval, KeepsTheContentsWhateverTheName) {
  // The directory is deep, in case a system lets ".." lead out of a drive.
  const std::string root = scratch_.path("1/2/3/4/5/6/7/8");
  fs::create_directories(root);
  const auto complaints = vel::test::inOwnRoot(root, removeUnderEveryName);
  if (!complaints) GTEST_SKIP() << "the system gives this user neither a root nor a drive";
  EXPECT_EQ(*complaints, "");
}

}  // namespace
