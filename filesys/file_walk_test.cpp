// Tests walking over trees and removing them.
#include "platform/test/test.h"
#include "vel_include/vel_files.h"

namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;

void expectOk(const VelClStatus& status) {
  EXPECT_TRUE(status.isOk()) << status.getText();
}

std::string withSlashes(std::string_view path) {
  std::string text(path);
  std::replace(text.begin(), text.end(), '\\', '/');
  return text;
}

class FileWalk : public testing::Test {
 protected:
  FileWalk() {
    VelClReturnedText path;
    expectOk(velTemporaryDirectoryCreate("", "walk ", path));
    top_ = path.str();
  }
  ~FileWalk() override { expectOk(velTreeRemove(top_)); }

  std::string path(const std::string& entry) const { return top_ + "/" + entry; }
  /// Creates files, and directories where a name ends in "/".
  void create(const std::vector<std::string>& entries) const {
    for (const std::string& entry : entries) {
      const std::size_t end = entry.rfind('/');
      if (end != std::string::npos) expectOk(velDirectoryCreate(path(entry.substr(0, end)), true));
      if (end != entry.size() - 1) expectOk(velFileAppend(path(entry), ""));
    }
  }
  /// Makes a link; false where links cannot be made.
  bool link(const std::string& target, const std::string& entry) const {
    std::error_code error;
    const auto name = fs::u8path(path(entry));
    fs::create_directory_symlink(fs::u8path(target), name, error);
    return !error;
  }

  std::string top_;
};

std::vector<std::string> walked(const std::string& top, const VelStFileWalkOptions& options = {},
                                std::string_view skipped = {}) {
  VelClFileWalk walk;
  expectOk(walk.open(top, options));
  std::vector<std::string> entries;
  std::set<std::string> seen;
  while (walk.next()) {
    const std::string entry = withSlashes(walk.getPath().substr(top.size() + 1));
    const std::size_t parent = entry.rfind('/');
    EXPECT_TRUE(parent == std::string::npos || options.filter != nullptr ||
                seen.contains(entry.substr(0, parent)))
        << entry << " before its directory";
    EXPECT_EQ(walk.getName(), entry.substr(parent + 1));
    EXPECT_EQ(walk.getDepth(), 1 + std::count(entry.begin(), entry.end(), '/'));
    seen.insert(entry);
    const char* const mark = !walk.isOk()                                ? "!"
                             : walk.getKind() == VEL_FILE_KIND_DIRECTORY ? "/"
                             : walk.getKind() == VEL_FILE_KIND_LINK      ? "@"
                                                                         : "";
    entries.push_back(entry + mark);
    if (entry == skipped) walk.skip();
  }
  EXPECT_FALSE(walk.next());
  EXPECT_EQ(walk.getDepth(), 0U);
  std::sort(entries.begin(), entries.end());
  return entries;
}

VelStFileWalkOptions filter(std::string_view pattern) {
  VelStFileWalkOptions options{};
  options.filter = pattern.data();
  options.filterSize = pattern.size();
  return options;
}

VelStFileWalkOptions toDepth(std::uint32_t depth) {
  VelStFileWalkOptions options{};
  options.maxDepth = depth;
  return options;
}

VelStFileWalkOptions followingLinks() {
  VelStFileWalkOptions options{};
  options.followsLinks = true;
  return options;
}

TEST_F(FileWalk, ListsAllEntriesOrThoseAskedFor) {
  create({"a", "b/c", "b/d/e.txt", "b/d/ä.txt", "empty/", "日本/ж.txt", "x.log"});
  using testing::ElementsAre;
  EXPECT_THAT(walked(top_), ElementsAre("a", "b/", "b/c", "b/d/", "b/d/e.txt", "b/d/ä.txt", "empty/", "x.log",
                                        "日本/", "日本/ж.txt"));
  EXPECT_THAT(walked(top_, toDepth(1)), ElementsAre("a", "b/", "empty/", "x.log", "日本/"));
  EXPECT_THAT(walked(top_, {}, "b/d"),
              ElementsAre("a", "b/", "b/c", "b/d/", "empty/", "x.log", "日本/", "日本/ж.txt"));
  EXPECT_THAT(walked(top_, filter("?")), ElementsAre("a", "b/", "b/c", "b/d/"));
  EXPECT_THAT(walked(top_, filter("?.t*")), ElementsAre("b/d/e.txt", "b/d/ä.txt", "日本/ж.txt"));
  EXPECT_THAT(walked(top_, filter("??")), ElementsAre("日本/"));
  EXPECT_THAT(walked(top_, filter("*t*t")), ElementsAre("b/d/e.txt", "b/d/ä.txt", "日本/ж.txt"));
  EXPECT_THAT(walked(top_, filter("")), ElementsAre());
  // As the system compares names.
  EXPECT_EQ(walked(top_, filter("X.LOG")).size(), velFileExists(path("X.LOG")) ? 1U : 0U);
  EXPECT_EQ(walked(top_, filter("b/Ж*")).size(), 0U);
  EXPECT_EQ(walked(top_, filter("Ж*")).size(), velFileExists(path("日本/Ж.TXT")) ? 1U : 0U);
  EXPECT_THAT(walked(path("empty")), ElementsAre());
}

TEST_F(FileWalk, TellsTheStatusOfEntries) {
  create({"d/"});
  expectOk(velFileReplace(path("d/file"), "123"));
  VelClFileWalk walk;
  VelStFileStatus status;
  expectOk(walk.open(top_));
  EXPECT_EQ(walk.getStatus(status).getErrorId(), +FILE_COULD_NOT_QUERY) << "before the first entry";
  for (const auto& [size, kind] : {std::pair{0U, VEL_FILE_KIND_DIRECTORY}, {3U, VEL_FILE_KIND_FILE}}) {
    ASSERT_TRUE(walk.next());
    expectOk(walk.getStatus(status));
    EXPECT_EQ(status.size, size);
    EXPECT_EQ(status.kind, +kind);
    EXPECT_EQ(walk.getKind(), kind);
  }
  expectOk(velFileRemove(path("d/file")));
  const VelClStatus missing = walk.getStatus(status);
  EXPECT_EQ(missing.getClass(), VelEnErrorClass::IO_NOT_EXISTENT);
  EXPECT_EQ(withSlashes(missing.getName()), withSlashes(path("d/file")));
  VelClFileWalk moved = std::move(walk);
  EXPECT_FALSE(moved.next());
  EXPECT_FALSE(walk.next());
}

TEST_F(FileWalk, FollowsLinksOnlyIfAskedAndNeverForever) {
  create({"real/file", "other/"});
  if (!link(path("real"), "other/to real") || !link("..", "other/up") || !link("nowhere", "dangling"))
    GTEST_SKIP() << "no links here";
  using testing::ElementsAre;
  EXPECT_THAT(walked(top_),
              ElementsAre("dangling@", "other/", "other/to real@", "other/up@", "real/", "real/file"));
  EXPECT_THAT(walked(top_, followingLinks()),
              ElementsAre("dangling@", "other/", "other/to real/", "other/to real/file", "other/up!",
                          "other/up/", "real/", "real/file"));
  EXPECT_THAT(walked(path("other/to real")), ElementsAre("file"));
  expectOk(velTreeRemove(path("other")));
  EXPECT_THAT(walked(top_), ElementsAre("dangling@", "real/", "real/file"));
  ASSERT_TRUE(link(path("real"), "again"));
  expectOk(velTreeRemove(path("again")));
  expectOk(velFileRemove(path("dangling")));
  EXPECT_THAT(walked(top_), ElementsAre("real/", "real/file"));
}

/// Creates directories within each other; false if the system does not allow paths of this length. Each has
/// files that are listed before and after its subdirectory, whatever the order of the system is.
bool createDeep(std::string name, int depth, std::size_t sizeOfNames) {
  for (int level = 0; level < depth; ++level) {
    name += "/" + std::to_string(level) + std::string(sizeOfNames, 'd');
    if (!velDirectoryCreate(name, level == 0).isOk()) return false;
    for (const char* file : {"/a", "/m", "/z"})
      if (!velFileAppend(name + file, "").isOk()) return false;
  }
  return true;
}

TEST_F(FileWalk, AndRemovalWorkAtAnyDepth) {
  constexpr int kDepth = 100;
  // Some systems allow 4,095 bytes.
  const std::string top = createDeep(path("longer"), kDepth, 60) ? path("longer") : path("long");
  if (top == path("long")) {
    ASSERT_TRUE(createDeep(top, kDepth, 20));
  }
  VelClFileWalk walk;
  expectOk(walk.open(top));
  int files = 0, directories = 0;
  std::uint32_t deepest = 0;
  while (walk.next()) {
    EXPECT_TRUE(walk.isOk()) << walk.getFailure().getText();
    ++(walk.getKind() == VEL_FILE_KIND_DIRECTORY ? directories : files);
    deepest = std::max(deepest, walk.getDepth());
  }
  EXPECT_EQ(files, 3 * kDepth);
  EXPECT_EQ(directories, kDepth);
  EXPECT_EQ(deepest, kDepth + 1U);
  expectOk(velTreeRemove(top));
  EXPECT_FALSE(velFileExists(top));
}

TEST_F(FileWalk, RemovesNoRoot) {
  const std::string root = fs::path(fs::current_path().root_path()).string();
  for (const std::string& name : {root, root + "."}) {
    const VelClStatus status = velTreeRemove(name);
    EXPECT_EQ(status.getErrorId(), +FILE_COULD_NOT_REMOVE) << name;
    EXPECT_TRUE(velFileExists(top_));
  }
}

}  // namespace
