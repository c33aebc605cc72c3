// Roots keep their contents under every name; other directories are emptied under every name, too.
#include <algorithm>
#include <fstream>
#include <functional>
#include <map>

#include "filesys/test/directory_fixture.h"
#include "platform/test/own_root.h"

namespace {

namespace fs = std::filesystem;
using vel::test::isSameDirectory;
using vel::test::left;

constexpr char kShare[] = "\\\\srv\\share";

/// All rows of up to so many pieces.
void forEachSpelling(int pieces, const std::string& begin,
                     const std::function<void(const std::string&)>& action) {
  action(begin);
  if (pieces == 0) return;
  for (const char* piece : {"\\", "/", ".", "..", "x"}) forEachSpelling(pieces - 1, begin + piece, action);
}

/// What the system would open, found out without the library.
std::string systemPath(std::string name) {
  while (name.size() > 3 && name.ends_with("\\\\")) name.pop_back();
  if (fs::path::preferred_separator == '\\') return name;
  std::ranges::replace(name, '\\', '/');
  return name.find(":") == 1 ? name.substr(2) : name;
}

/// Server and share, or "".
std::string shareOf(const std::string& name) {
  const std::size_t server = name.starts_with("\\\\") ? name.find('\\', 3) : std::string::npos;
  return server == std::string::npos ? "" : name.substr(0, name.find('\\', server + 1));
}

bool isRoot(const std::string& name) {
  const std::string path = systemPath(name), share = shareOf(name);
  return isSameDirectory(path, fs::current_path().root_path().string()) ||
         (!share.empty() && isSameDirectory(path, systemPath(share)));
}

/// In the root, which is the current directory.
class Tree {
 public:
  Tree() {
    for (const fs::path& file : kFiles_) {
      if (fs::exists(file, ignored_)) continue;
      fs::create_directories(file.parent_path(), ignored_);
      std::ofstream(file) << "kept";
    }
  }
  bool isThere(const char* file) { return fs::exists(file, ignored_); }

 private:
  std::error_code ignored_;
  const fs::path kFiles_[5] = {"file", "kept/file", "srv/share/file", "x/file", "x/x/file"};
};

struct Counts {
  int roots = 0, others = 0;
};

/// A complaint about one name, if any.
std::string removeTree(VelClDirectory& directory, Counts& counts) {
  Tree tree;
  const std::string name = directory.getAsCString(), path = systemPath(name);
  const bool isKept = isRoot(name), isWithin = isSameDirectory(path, "x/x"),
             isEmptied = !isKept && (isWithin || isSameDirectory(path, "x"));
  counts.roots += isKept ? 1 : 0;
  counts.others += isEmptied ? 1 : 0;
  const bool isRemoved = directory.removeAll(true);
  if (!tree.isThere("file") || !tree.isThere("kept/file") || !tree.isThere("srv/share/file"))
    return name + " lost a root's contents\n";
  if (!isEmptied && !tree.isThere("x/x/file")) return name + " lost what is elsewhere\n";
  if (isKept && (isRemoved || left(directory).first != DIRECTORY_COULD_NOT_REMOVE)) return name + " went\n";
  if (isEmptied && (!isRemoved || tree.isThere(isWithin ? "x/x" : "x"))) return name + " stayed\n";
  return {};
}

std::string removeUnderEveryName(const std::vector<std::string>& beginnings) {
  const bool hasDrives = fs::path::preferred_separator == '\\';
  // As they are: built from its name once more, a directory could get another one.
  std::map<std::string, VelClDirectory> directories;
  const auto add = [&](const VelClDirectory& directory) {
    const std::string name = directory.getAsCString();
    // Never leave the drive. Systems do not agree about empty components behind "\\\\?\\".
    const bool isOnDrive = !hasDrives || name.find(beginnings[0]) != std::string::npos,
               isUnclear = name.starts_with("\\\\?") && systemPath(name).find("\\\\", 1) != std::string::npos;
    if (isOnDrive && !isUnclear) directories.emplace(name, directory);
  };
  for (const std::string& beginning : beginnings)
    forEachSpelling(beginning == beginnings[0] ? 5 : 4, beginning,
                    [&](const std::string& name) { add(VelClDirectory(name.c_str())); });
  if (!hasDrives)
    forEachSpelling(4, kShare, [&](const std::string& name) { add(VelClDirectory(name.c_str())); });
  forEachSpelling(4, "", [&](const std::string& name) {
    VelClDirectory directory((beginnings[hasDrives ? 0 : 1] + "\\").c_str());
    directory.attachSubDir(VelClLocation(name.c_str(), false));
    add(directory);
    if (directory.detachLastSubDir()) add(directory);
  });
  std::string complaints;
  Counts counts;
  for (auto& [name, directory] : directories)
    if (complaints.size() < 1000) complaints += removeTree(directory, counts);
  if (counts.roots < 20 || counts.others < 20) complaints += "too few names\n";
  return complaints;
}

using RootRemoval = vel::test::DirectoryFixture;

TEST_F(RootRemoval, KeepsTheContentsUnderEveryName) {
  // Deep enough for a system that would let ".." lead out of a drive.
  const std::string root = scratch_.path("1/2/3/4/5/6/7/8");
  fs::create_directories(root);
  const auto complaints = vel::test::inOwnRoot(root, removeUnderEveryName);
  if (!complaints) GTEST_SKIP() << "the system gives this user neither a root nor a drive";
  EXPECT_EQ(*complaints, "");
}

}  // namespace
