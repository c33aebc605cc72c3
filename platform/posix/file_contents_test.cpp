// Tests what is particular to POSIX systems: names of any bytes, holes, pipes, files without a size,
// permissions and links.
#include <fcntl.h>

#include "platform/test/posix/processes.h"
#include "platform/test/test.h"
#include "vel_include/vel_files.h"

namespace {

namespace fs = std::filesystem;
using vel::test::modeOf;
using vel::test::readFile;

void expectOk(const VelClStatus& status) {
  EXPECT_TRUE(status.isOk()) << status.getText();
}

class PlainFiles : public testing::Test {
 protected:
  std::string path(const std::string& entry) const { return scratch_.path(entry); }
  const vel::test::ScratchDirectory scratch_;
};

TEST_F(PlainFiles, HaveNamesOfAnyBytes) {
  const std::vector<std::string> names = {"back\\slash", "\xFF\xFE", "C:x", "line\nbreak",
                                          "-",           "~",        "a ",  "a."};
  for (const std::string& name : names) {
    expectOk(velFileReplace(path(name), name));
    EXPECT_EQ(readFile(path(name)), name);
    expectOk(velFileCopy(path(name), path(name + " copy")));
    expectOk(velFileMove(path(name + " copy"), path(name), VEL_OVERWRITE_ALWAYS));
  }
  std::set<std::string> found;
  VelClFileWalk walk;
  expectOk(walk.open(scratch_.path()));
  while (walk.next()) found.insert(std::string(walk.getName()));
  EXPECT_EQ(found, std::set<std::string>(names.begin(), names.end()));
}

TEST_F(PlainFiles, CopiesLeaveOutHoles) {
  const std::string file = path("sparse"), copy = path("copy");
  constexpr off_t kSize = 20'000'000'000;
  const int descriptor = open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
  for (const off_t at : {off_t{0}, off_t{3'000'000'000}, off_t{3'000'008'192}, kSize - 100})
    EXPECT_EQ(pwrite(descriptor, "data", 4, at), 4);
  EXPECT_EQ(ftruncate(descriptor, kSize), 0);
  close(descriptor);
  struct stat source {
  }, target{};
  ASSERT_EQ(stat(file.c_str(), &source), 0);
  if (source.st_blocks > 10'000) GTEST_SKIP() << "no holes here";
  expectOk(velFileCopy(file, copy));
  ASSERT_EQ(stat(copy.c_str(), &target), 0);
  EXPECT_EQ(target.st_size, kSize);
  EXPECT_LT(target.st_blocks, 10'000);
  const int copied = open(copy.c_str(), O_RDONLY | O_CLOEXEC);
  for (const off_t at : {off_t{0}, off_t{3'000'000'000}, off_t{3'000'008'192}, kSize - 100}) {
    char bytes[5] = "";
    EXPECT_EQ(pread(copied, bytes, 4, at), 4);
    EXPECT_STREQ(bytes, "data") << at;
  }
  close(copied);
}

TEST_F(PlainFiles, WithoutSizeAreReadToTheirEnd) {
  VelClReturnedText text;
  expectOk(velFileRead("/proc/self/status", 1'000'000, text));
  EXPECT_THAT(text.str(), testing::StartsWith("Name:"));
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  EXPECT_EQ(write(ends[1], "in a pipe", 9), 9);
  close(ends[1]);
  expectOk(velFileRead("/proc/self/fd/" + std::to_string(ends[0]), 9, text));
  EXPECT_EQ(text.str(), "in a pipe");
  close(ends[0]);
  EXPECT_EQ(velFileRead("/dev/zero", 100'000, text).getErrorId(), +FILE_TOO_LARGE);
  ASSERT_EQ(mkfifo(path("fifo").c_str(), 0600), 0);
  EXPECT_EQ(velFileRead(path("fifo"), 10, text).getSystemError(), static_cast<std::uint32_t>(ENXIO));
  EXPECT_FALSE(velFileCopy(path("fifo"), path("copy")).isOk());
  EXPECT_FALSE(velFileExists(path("copy")));
  expectOk(velFileCopy("/proc/self/status", path("copy")));
  EXPECT_THAT(readFile(path("copy")), testing::StartsWith("Name:"));
}

TEST_F(PlainFiles, ArePrivateAsLongAsTheyShouldBe) {
  VelClReturnedText name;
  const mode_t before = umask(0);
  expectOk(velTemporaryFileCreate(scratch_.path(), "", name));
  EXPECT_EQ(modeOf(name.str()), mode_t{0600});
  expectOk(velTemporaryDirectoryCreate(scratch_.path(), "", name));
  EXPECT_EQ(modeOf(name.str()), mode_t{0700});
  umask(027);
  expectOk(velFileAppend(path("appended"), "x"));
  expectOk(velFileReplace(path("replaced"), "x"));
  EXPECT_EQ(modeOf(path("appended")), mode_t{0640});
  EXPECT_EQ(modeOf(path("replaced")), mode_t{0640});
  chmod(path("appended").c_str(), 06755);
  expectOk(velFileCopy(path("appended"), path("plain")));
  expectOk(velFileCopy(path("appended"), path("kept"), VEL_OVERWRITE_NEVER, true));
  EXPECT_EQ(modeOf(path("plain")), mode_t{0750});
  EXPECT_EQ(modeOf(path("kept")), mode_t{0755});
  umask(before);
}

TEST_F(PlainFiles, AreReachedThroughLinks) {
  scratch_.write("file", "old");
  fs::create_symlink("file", path("link"));
  fs::create_symlink("nowhere", path("dangling"));
  fs::create_symlink("loop", path("loop"));
  expectOk(velFileReplace(path("link"), "new"));
  expectOk(velFileAppend(path("link"), "er"));
  expectOk(velFileCopy(scratch_.write("source", "newest"), path("link"), VEL_OVERWRITE_ALWAYS));
  EXPECT_EQ(readFile(path("file")), "newest");
  EXPECT_TRUE(fs::is_symlink(path("link")));
  EXPECT_FALSE(velFileCopy(path("file"), path("link"), VEL_OVERWRITE_ALWAYS).isOk()) << "the file itself";
  EXPECT_EQ(readFile(path("file")), "newest");
  for (const auto& [name, kind, exists] : {std::tuple{"link", VEL_FILE_KIND_LINK, true},
                                           {"dangling", VEL_FILE_KIND_LINK, false},
                                           {"file", VEL_FILE_KIND_FILE, true}}) {
    VelStFileStatus status;
    expectOk(velFileGetStatus(path(name), status, VEL_LINKS_KEEP));
    EXPECT_EQ(status.kind, +kind) << name;
    EXPECT_EQ(velFileExists(path(name)), exists) << name;
  }
  bool exists = false;
  EXPECT_EQ(velFileExists(path("loop"), exists).getSystemError(), static_cast<std::uint32_t>(ELOOP));
  expectOk(velFileMove(path("link"), path("moved")));
  expectOk(velFileRemove(path("moved")));
  expectOk(velFileRemove(path("dangling")));
  EXPECT_EQ(readFile(path("file")), "newest");
}

TEST_F(PlainFiles, ThatCannotBeListedDoNotEndAWalk) {
  if (!vel::test::canBeUnprivileged()) GTEST_SKIP() << "needs another user";
  scratch_.write("a/file", "");
  scratch_.write("closed/file", "");
  scratch_.write("z/file", "");
  chmod(scratch_.path().c_str(), 0755);
  chmod(path("closed").c_str(), 0);
  const auto countEntries = [&] {
    VelClFileWalk walk;
    int entries = walk.open(scratch_.path()).isOk() ? 0 : 100;
    for (; walk.next(); ++entries)
      if (!walk.isOk())
        entries += walk.getFailure().getClass() == VelEnErrorClass::IO_PERMISSION_DENIED &&
                           walk.getPath() == path("closed")
                       ? 10
                       : 50;
    return entries;
  };
  // Three directories, two files, and the failure, which counts eleven.
  EXPECT_EQ(vel::test::exitCodeOf(vel::test::beUnprivileged, countEntries), 16);
  chmod(path("closed").c_str(), 0700);
}

TEST_F(PlainFiles, OfOthersAreNotRemovedThroughExchangedDirectories) {
  scratch_.write("outside/file", "kept");
  const std::string name = path("tree/victim"), hidden = path("tree/hidden");
  const pid_t other = fork();
  if (other == 0) {
    for (;;) {
      mkdir(name.c_str(), 0700);
      mkdir((name + "/x").c_str(), 0700);
      rename(name.c_str(), hidden.c_str());
      static_cast<void>(symlink(path("outside").c_str(), name.c_str()));
      unlink(name.c_str());
      rename(hidden.c_str(), name.c_str());
    }
  }
  fs::create_directory(path("tree"));
  for (int round = 0; round < 300; ++round) {
    static_cast<void>(velTreeRemove(path("tree")).isOk());
    static_cast<void>(mkdir(path("tree").c_str(), 0700));
  }
  kill(other, SIGKILL);
  waitpid(other, nullptr, 0);
  EXPECT_EQ(readFile(path("outside/file")), "kept");
}

}  // namespace
