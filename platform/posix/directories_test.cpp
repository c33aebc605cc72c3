// Links in the place of directories, entries exchanged while a removal runs, and failing listings.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <string>
#include <thread>

#include "platform/platform.h"
#include "platform/test/scratch_directory.h"
#include "vel_include/vel_filesys.h"

namespace vel::platform {

namespace {

namespace fs = std::filesystem;
using test::readFile;
using test::ScratchDirectory;

VelClDirectory directoryOf(const std::string& path) {
  return VelClDirectory(path.c_str());
}

TEST(PosixDirectories, LinksAreRemovedThemselves) {
  const ScratchDirectory scratch;
  const std::string outside = scratch.write("outside/file", "kept");
  fs::create_directory(scratch.path("tree"));
  fs::create_directory_symlink("../outside", scratch.path("tree/link"));
  fs::create_directory_symlink(scratch.path("outside"), scratch.path("tree/.link"));
  fs::create_symlink("../outside/file", scratch.path("tree/file"));
  fs::create_symlink("nowhere", scratch.path("tree/broken"));
  fs::create_directory_symlink("..", scratch.path("tree/up"));
  ASSERT_EQ(mkfifo(scratch.path("tree/pipe").c_str(), 0600), 0);
  for (VelClDirectoryWalk walk(directoryOf(scratch.path("tree"))); walk.isValid(); walk.setToNext())
    EXPECT_EQ(walk.isDirectory(), walk.getNameWithoutPath()[0] == '.' && walk.getNameWithoutPath()[1] != 'l')
        << walk.getNameWithoutPath();
  EXPECT_TRUE(directoryOf(scratch.path("tree")).removeAll(true));
  EXPECT_FALSE(fs::exists(scratch.path("tree")));
  EXPECT_EQ(readFile(outside), "kept");
}

TEST(PosixDirectories, ALinkAsTheDirectoryIsRemovedItself) {
  const ScratchDirectory scratch;
  const std::string outside = scratch.write("outside/file", "kept");
  for (const bool withContents : {false, true}) {
    fs::create_directory_symlink("outside", scratch.path("link"));
    EXPECT_TRUE(directoryOf(scratch.path("link")).removeAll(withContents));
    EXPECT_FALSE(fs::is_symlink(fs::symlink_status(scratch.path("link"))));
    EXPECT_EQ(readFile(outside), "kept");
  }
  for (const char* target : {"outside/file", "nowhere"}) {
    fs::create_symlink(target, scratch.path("other"));
    EXPECT_EQ(removeDirectory(scratch.path("other").c_str()), ENOTDIR) << target;
    EXPECT_TRUE(fs::remove(scratch.path("other")));
  }
}

TEST(PosixDirectories, AnExchangedEntryIsNotFollowed) {
  const ScratchDirectory scratch;
  const std::string outside = scratch.write("outside/file", "kept");
  fs::create_directories(scratch.path("tree/sub"));
  DirectoryHandle tree;
  ASSERT_EQ(openDirectory(scratch.path("tree").c_str(), DirectoryLink::Refuse, tree), 0);
  DirectoryEntry entry{};
  while (std::strcmp(entry.name, "sub") != 0) ASSERT_EQ(nextEntry(tree, entry), WalkStep::Entry);
  EXPECT_EQ(entry.attributes, kAttributeDirectory);
  fs::remove(scratch.path("tree/sub"));
  fs::create_directory_symlink("../outside", scratch.path("tree/sub"));
  DirectoryHandle opened;
  EXPECT_EQ(openEntry(tree, entry, opened), ENOTDIR);
  EXPECT_EQ(opened.system, nullptr);
  EXPECT_EQ(removeEntry(tree, entry), ENOTDIR);
  // What was opened stays, wherever its path leads.
  scratch.write("tree/inner/file", "gone");
  fs::rename(scratch.path("tree"), scratch.path("moved"));
  fs::create_directory_symlink("outside", scratch.path("tree"));
  DirectoryEntry file{};
  std::memcpy(file.systemName, "file", 5);
  EXPECT_EQ(removeEntry(tree, file), ENOENT);
  entry.attributes = 0;
  EXPECT_EQ(removeEntry(tree, entry), 0);
  EXPECT_FALSE(fs::is_symlink(fs::symlink_status(scratch.path("moved/sub"))));
  EXPECT_EQ(readFile(outside), "kept");
  closeDirectory(tree);
}

// Another thread keeps exchanging a sub-directory for a link to the outside.
TEST(PosixDirectories, RemovalNeverLeavesItsTree) {
  const ScratchDirectory scratch;
  const std::string outside = scratch.write("outside/deep/file", "kept");
  std::atomic<bool> stop = false;
  std::thread exchanger([&] {
    const std::string link = scratch.path("tree/b");
    while (!stop) {
      std::error_code ignored;
      fs::rename(link, scratch.path("aside"), ignored);
      fs::create_directory_symlink("../outside", link, ignored);
      fs::remove(link, ignored);
      fs::rename(scratch.path("aside"), link, ignored);
      fs::remove_all(scratch.path("aside"), ignored);
    }
  });
  constexpr int kRounds = 100;
  int rounds = 0;
  for (; rounds < kRounds && fs::exists(outside); ++rounds) {
    std::error_code ignored;
    fs::create_directories(scratch.path("tree/b/deep"), ignored);
    static_cast<void>(directoryOf(scratch.path("tree")).removeAll(true));
  }
  stop = true;
  exchanger.join();
  EXPECT_EQ(rounds, kRounds);
  EXPECT_EQ(readFile(outside), "kept");
}

TEST(PosixDirectories, RemovalEndsAtABoundedDepth) {
  for (const int levels : {250, 300}) {
    const ScratchDirectory scratch;
    const test::CurrentDirectory in(scratch.path());
    for (int level = 0; level < levels; ++level) {
      ASSERT_TRUE(fs::create_directory("t"));
      fs::current_path("t");
    }
    EXPECT_EQ(directoryOf(scratch.path("t")).removeAll(true), levels == 250);
    EXPECT_EQ(fs::exists(scratch.path("t")), levels != 250);
  }
}

TEST(PosixDirectories, AListingThatBreaksOffFails) {
  const ScratchDirectory scratch;
  scratch.write("file", "");
  const int next = dup(0);
  close(next);
  VelClDirectoryWalk walk(directoryOf(scratch.path()));
  close(next);
  while (walk.setToNext()) {
  }
  EXPECT_EQ(walk.getLastError().errorId, DIRWALK_NO_CONTINUATION);
  EXPECT_EQ(walk.getLastError().errorClass, VelEnErrorClass::IO_PROBLEM);
  EXPECT_FALSE(walk.isValid());
}

TEST(PosixDirectories, ExclusiveCreationOpensOnlyWhatIsNew) {
  const ScratchDirectory scratch;
  const std::string file = scratch.write("file", "kept");
  fs::create_symlink("nowhere", scratch.path("broken"));
  SystemError error = 0;
  for (const char* taken : {"file", "broken"}) {
    EXPECT_EQ(createExclusively(scratch.path(taken).c_str(), error), -1);
    EXPECT_EQ(error, EEXIST) << taken;
  }
  char name[VEL_MAX_PATH_LENGTH + 1];
  const int descriptor = velTmpFileCreate(scratch.path().c_str(), nullptr, name);
  ASSERT_GE(descriptor, 0);
  char bytes[4] = "";
  EXPECT_EQ(pwrite(descriptor, "a\nb", 3, 0), 3);
  EXPECT_EQ(pread(descriptor, bytes, 3, 0), 3);
  EXPECT_STREQ(bytes, "a\nb");
  struct stat status {};
  EXPECT_EQ(fstat(descriptor, &status), 0);
  EXPECT_EQ(status.st_mode & 0777, mode_t{0600});
  close(descriptor);
  EXPECT_EQ(readFile(file), "kept");
}

}  // namespace

}  // namespace vel::platform
