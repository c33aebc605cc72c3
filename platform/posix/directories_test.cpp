// Tests links to directories, entries that are exchanged during a removal, and listings that fail.
#include <atomic>
#include <climits>

#include "platform/directories.h"
#include "platform/files.h"
#include "platform/system_error.h"
#include "platform/test/posix/processes.h"
#include "platform/test/test.h"
#include "vel_include/vel_filesys.h"

namespace vel::platform {

namespace {

namespace fs = std::filesystem;
using test::readFile;
using test::ScratchDirectory;

class PosixDirectories : public testing::Test {
 protected:
  VelClDirectory directory(const char* entry) const { return VelClDirectory(scratch_.path(entry).c_str()); }
  void link(const char* target, const char* entry) const {
    fs::create_directory_symlink(target, scratch_.path(entry));
  }
  bool isLink(const char* entry) const { return fs::is_symlink(fs::symlink_status(scratch_.path(entry))); }

  test::ScratchDirectory scratch_;
  const std::string outside_ = scratch_.write("outside/deep/file", "kept");
};

TEST_F(PosixDirectories, RemovalDeletesLinksButNotTheirTargets) {
  fs::create_directory(scratch_.path("tree"));
  link("../outside", "tree/link");
  link("../outside", "tree/.link");
  link("../outside/deep/file", "tree/file");
  link("nowhere", "tree/broken");
  link("..", "tree/up");
  ASSERT_EQ(mkfifo(scratch_.path("tree/pipe").c_str(), 0600), 0);
  for (VelClDirectoryWalk walk(directory("tree")); walk.isValid(); walk.setToNext())
    EXPECT_EQ(walk.isDirectory(), walk.isCurrentDirectory() || walk.isParentDirectory());
  EXPECT_TRUE(directory("tree").removeAll(true));
  EXPECT_FALSE(fs::exists(scratch_.path("tree")));
  for (const bool withContents : {false, true}) {
    link("outside", "link");
    EXPECT_TRUE(directory("link").removeAll(withContents));
    EXPECT_FALSE(isLink("link"));
  }
  for (const char* target : {"outside/deep/file", "nowhere"}) {
    link(target, "other");
    EXPECT_EQ(removeDirectory(scratch_.path("other").c_str()), ENOTDIR) << target;
    EXPECT_TRUE(fs::remove(scratch_.path("other")));
  }
  EXPECT_EQ(readFile(outside_), "kept");
}

TEST_F(PosixDirectories, AnExchangedEntryIsNotFollowed) {
  fs::create_directories(scratch_.path("tree/sub"));
  DirectoryHandle tree, opened;
  ASSERT_EQ(openDirectory(scratch_.path("tree").c_str(), DirectoryLink::Refuse, tree), 0);
  DirectoryEntry entry{}, file{};
  for (ListingStep step = ListingStep::Entry; std::strcmp(entry.name, "sub") != 0;) {
    ASSERT_EQ(nextEntry(tree, entry, step), 0);
    ASSERT_EQ(step, ListingStep::Entry);
  }
  EXPECT_EQ(entry.attributes, kAttributeDirectory);
  fs::remove(scratch_.path("tree/sub"));
  link("../outside", "tree/sub");
  EXPECT_EQ(openSubdirectory(tree, entry, opened), ENOTDIR);
  EXPECT_EQ(opened.system, nullptr);
  EXPECT_EQ(removeEntry(tree, entry), ENOTDIR);
  // An open directory stays the same, even if its path leads elsewhere.
  fs::rename(scratch_.path("tree"), scratch_.path("moved"));
  link("outside/deep", "tree");
  std::memcpy(file.systemName, "file", 5);
  EXPECT_EQ(removeEntry(tree, file), ENOENT);
  entry.attributes = 0;
  EXPECT_EQ(removeEntry(tree, entry), 0);
  EXPECT_FALSE(isLink("moved/sub"));
  EXPECT_EQ(readFile(outside_), "kept");
  closeDirectory(tree);
}

// Another thread keeps exchanging a sub-directory for a link to the outside.
TEST_F(PosixDirectories, RemovalNeverLeavesItsTree) {
  std::atomic<bool> stop = false;
  std::thread exchanger([&] {
    const std::string entry = scratch_.path("tree/b"), aside = scratch_.path("aside");
    while (!stop) {
      std::error_code ignored;
      fs::rename(entry, aside, ignored);
      fs::create_directory_symlink("../outside", entry, ignored);
      fs::remove(entry, ignored);
      fs::rename(aside, entry, ignored);
      fs::remove_all(aside, ignored);
    }
  });
  constexpr int kRounds = 100;
  int rounds = 0;
  for (; rounds < kRounds && fs::exists(outside_); ++rounds) {
    std::error_code ignored;
    fs::create_directories(scratch_.path("tree/b/deep"), ignored);
    static_cast<void>(directory("tree").removeAll(true));
  }
  stop = true;
  exchanger.join();
  EXPECT_EQ(rounds, kRounds);
  EXPECT_EQ(readFile(outside_), "kept");
}

TEST_F(PosixDirectories, RemovalEndsAtABoundedDepth) {
  for (const int levels : {257, 258}) {
    const ScratchDirectory scratch;
    const test::CurrentDirectory in(scratch.path());
    for (int level = 0; level < levels; ++level) {
      ASSERT_TRUE(fs::create_directory("t"));
      fs::current_path("t");
    }
    EXPECT_EQ(VelClDirectory(scratch.path("t").c_str()).removeAll(true), levels == 257);
    EXPECT_EQ(fs::exists(scratch.path("t")), levels != 257);
  }
}

TEST_F(PosixDirectories, AcceptPathsUpToTheLimitOfTheSystem) {
  const std::string name = scratch_.path("outside"),
                    longest = std::string(PATH_MAX - 1 - name.size(), '/') + name;
  for (const bool fits : {true, false}) {
    const std::string path = (fits ? "" : "/") + longest;
    DirectoryHandle opened;
    EXPECT_EQ(openDirectory(path.c_str(), DirectoryLink::Refuse, opened), fits ? 0 : ENAMETOOLONG);
    closeDirectory(opened);
    EXPECT_EQ(removeDirectory(path.c_str()), fits ? ENOTEMPTY : ENAMETOOLONG);
  }
}

TEST_F(PosixDirectories, AListingThatIsInterruptedReportsAnError) {
  const int next = dup(0);
  close(next);
  VelClDirectoryWalk walk(directory("outside"));
  close(next);  // the descriptor of the walk
  while (walk.setToNext()) {
  }
  EXPECT_EQ(walk.getLastError().errorId, DIRWALK_NO_CONTINUATION);
  EXPECT_EQ(walk.getLastError().errorClass, VelEnErrorClass::IO_PROBLEM);
  EXPECT_FALSE(walk.isValid());
}

TEST_F(PosixDirectories, ExclusiveCreationOpensNewFilesOnly) {
  link("nowhere", "broken");
  int descriptor = -1;
  for (const char* taken : {"outside/deep/file", "broken"})
    EXPECT_EQ(createExclusively(scratch_.path(taken).c_str(), descriptor), EEXIST) << taken;
  EXPECT_EQ(createExclusively(scratch_.path("new").c_str(), descriptor), 0);
  EXPECT_EQ(test::modeOf(scratch_.path("new")), mode_t{0600});
  close(descriptor);
}

}  // namespace

}  // namespace vel::platform
