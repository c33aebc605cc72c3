// What POSIX systems add: back-slash names, links, pipes, dot files and permission bits.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "platform/platform.h"
#include "platform/posix/rename.h"
#include "platform/test/scratch_directory.h"

namespace vel::platform {

namespace {

namespace fs = std::filesystem;
using test::readFile;
using test::ScratchDirectory;

/// The name as a program with back-slash names would write it, in capitals.
std::string backSlashName(const std::string& directory, const std::string& entry) {
  std::string name = "C:" + directory + "/" + entry;
  for (char& c : name)
    if (c == '/') c = '\\';
  return name;
}

mode_t modeOf(const std::string& path) {
  struct stat status {};
  EXPECT_EQ(stat(path.c_str(), &status), 0);
  return status.st_mode & 07777;
}

TEST(PosixFiles, BackSlashNamesReachExistingFiles) {
  const ScratchDirectory scratch;
  const std::string file = scratch.write("File.txt", "x");
  const std::string other = backSlashName(scratch.path(), "FILE.TXT");
  EntryStatus status;
  EXPECT_TRUE(entryExists(other.c_str()));
  EXPECT_TRUE(statusOf(other.c_str(), status));
  EXPECT_NE(copyFile(file.c_str(), other.c_str()), 0);
  EXPECT_EQ(renameFile(file.c_str(), backSlashName(scratch.path(), "New").c_str()), 0);
  EXPECT_EQ(renameFile(scratch.path("New").c_str(), backSlashName(scratch.path(), "NEW").c_str()), 0);
  EXPECT_EQ(readFile(scratch.path("NEW")), "x");
  scratch.write("third", "third");
  EXPECT_EQ(renameFile(scratch.path("NEW").c_str(), backSlashName(scratch.path(), "THIRD").c_str()), EEXIST);
  EXPECT_EQ(removeFile(backSlashName(scratch.path(), "new").c_str()), 0);
  EXPECT_FALSE(fs::exists(scratch.path("NEW")));
}

TEST(PosixFiles, LongNamesFail) {
  const ScratchDirectory scratch;
  const std::string file = scratch.write("file", "x");
  const std::string name = backSlashName(scratch.path(), std::string(260, 'x'));
  EntryStatus status;
  EXPECT_FALSE(entryExists(name.c_str()));
  EXPECT_FALSE(isWritable(name.c_str()));
  EXPECT_FALSE(statusOf(name.c_str(), status));
  EXPECT_EQ(attributesOf(name.c_str()), kAttributesUnreadable);
  EXPECT_EQ(copyFile(file.c_str(), name.c_str()), ENAMETOOLONG);
  EXPECT_EQ(renameFile(file.c_str(), name.c_str()), ENAMETOOLONG);
  EXPECT_EQ(removeFile(name.c_str()), ENAMETOOLONG);
  EXPECT_EQ(setReadOnly(name.c_str(), true), ENAMETOOLONG);
  EXPECT_EQ(std::distance(fs::directory_iterator(scratch.path()), {}), 1);
}

TEST(PosixFiles, NamesWithALeadingDotAreHidden) {
  const ScratchDirectory scratch;
  scratch.write(".hidden", "");
  scratch.write("..two", "");
  scratch.write(".dir/plain", "");
  struct Row {
    const char* name;
    bool hidden;
  };
  for (const Row& row : {Row{".hidden", true},
                         {"..two", true},
                         {".dir", true},
                         {".dir/", true},
                         {".dir/plain", false},
                         {".", false},
                         {"..", false},
                         {".dir/..", false},
                         {".dir/./", false}})
    EXPECT_EQ((attributesOf(scratch.path(row.name).c_str()) & kAttributeHidden) != 0, row.hidden) << row.name;
  EXPECT_EQ(attributesOf("/"), kAttributeDirectory);
}

TEST(PosixFiles, OnlyWriteBitsChange) {
  const ScratchDirectory scratch;
  const std::string file = scratch.write("file", "x");
  struct Row {
    mode_t before;
    bool readOnly;
    mode_t after;
  };
  for (const Row& row : {Row{0755, true, 0555},
                         {0555, false, 0755},
                         {0462, true, 0440},
                         {0020, false, 0220},
                         {04755, true, 04555}}) {
    ASSERT_EQ(chmod(file.c_str(), row.before), 0);
    EXPECT_EQ(setReadOnly(file.c_str(), row.readOnly), 0);
    EXPECT_EQ(modeOf(file), row.after) << std::oct << row.before;
  }
}

TEST(PosixFiles, CopyKeepsPermissionBits) {
  const ScratchDirectory scratch;
  const std::string source = scratch.write("source", "x");
  const std::string target = scratch.write("target", "y");
  ASSERT_EQ(chmod(source.c_str(), 04751), 0);
  EXPECT_EQ(copyFile(source.c_str(), target.c_str()), 0);
  EXPECT_EQ(copyFile(source.c_str(), scratch.path("new").c_str()), 0);
  EXPECT_EQ(modeOf(target), mode_t{0751});
  EXPECT_EQ(modeOf(scratch.path("new")), mode_t{0751});
}

TEST(PosixFiles, CopyFollowsLinksButNotOntoItself) {
  const ScratchDirectory scratch;
  const std::string file = scratch.write("file", "kept");
  fs::create_symlink("file", scratch.path("link"));
  EXPECT_EQ(copyFile(file.c_str(), scratch.path("link").c_str()), EACCES);
  EXPECT_EQ(copyFile(scratch.path("link").c_str(), file.c_str()), EACCES);
  EXPECT_EQ(readFile(file), "kept");
  EXPECT_EQ(copyFile(scratch.path("link").c_str(), scratch.path("copy").c_str()), 0);
  EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(scratch.path("copy"))));
}

TEST(PosixFiles, CopyNeverWaitsForAPipe) {
  const ScratchDirectory scratch;
  const std::string file = scratch.write("file", "x");
  const std::string pipe = scratch.path("pipe");
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  EXPECT_NE(copyFile(pipe.c_str(), scratch.path("new").c_str()), 0);
  EXPECT_NE(copyFile(file.c_str(), pipe.c_str()), 0);
  EXPECT_FALSE(fs::exists(scratch.path("new")));
}

TEST(PosixFiles, FailedCopyLeavesNoNewTarget) {
  const ScratchDirectory scratch;
  // Reading its first page fails: nothing is mapped there.
  EXPECT_EQ(copyFile("/proc/self/mem", scratch.path("new").c_str()), EIO);
  EXPECT_FALSE(fs::exists(scratch.path("new")));
}

TEST(PosixFiles, RemovingALinkKeepsItsTarget) {
  const ScratchDirectory scratch;
  scratch.write("directory/file", "x");
  fs::create_directory_symlink("directory", scratch.path("link"));
  EXPECT_EQ(removeFile(scratch.path("link").c_str()), 0);
  EXPECT_TRUE(fs::exists(scratch.path("directory/file")));
}

TEST(PosixFiles, MakingALinkRemovableLeavesItsTargetReadOnly) {
  const ScratchDirectory scratch;
  const std::string target = scratch.write("target", "x");
  fs::create_symlink("target", scratch.path("link"));
  ASSERT_EQ(chmod(target.c_str(), 0444), 0);
  EXPECT_EQ(makeRemovable(scratch.path("link").c_str()), 0);
  EXPECT_EQ(modeOf(target), mode_t{0444});
  EXPECT_EQ(makeRemovable(target.c_str()), 0);
  EXPECT_EQ(modeOf(target), mode_t{0644});
}

TEST(PosixFiles, RenamingWithoutTheFileSystemsHelp) {
  const ScratchDirectory scratch;
  const std::string file = scratch.write("file", "x");
  const std::string other = scratch.write("directory/other", "other");
  fs::create_directory(scratch.path("empty"));
  for (const std::string& target : {file, other, scratch.path("directory")})
    EXPECT_EQ(renameByLink(file.c_str(), target.c_str()), EEXIST) << target;
  EXPECT_EQ(renameByLink(scratch.path("directory").c_str(), scratch.path("empty").c_str()), EEXIST);
  EXPECT_EQ(renameByLink(scratch.path("missing").c_str(), scratch.path("new").c_str()), ENOENT);
  EXPECT_EQ(renameByLink(file.c_str(), scratch.path("new").c_str()), 0);
  EXPECT_FALSE(fs::exists(file));
  EXPECT_EQ(readFile(scratch.path("new")), "x");
  EXPECT_EQ(renameByLink(scratch.path("directory").c_str(), scratch.path("moved").c_str()), 0);
  EXPECT_EQ(readFile(scratch.path("moved/other")), "other");
}

TEST(PosixFiles, TmpDirectoryOfLastResort) {
  const char* const old = std::getenv("TMPDIR");
  const std::string before = old == nullptr ? "" : old;
  setenv("TMPDIR", "/var/tmp", 1);
  EXPECT_STREQ(fallbackTmpDirectory(), "/var/tmp");
  setenv("TMPDIR", "", 1);
  EXPECT_STREQ(fallbackTmpDirectory(), "/tmp");
  unsetenv("TMPDIR");
  EXPECT_STREQ(fallbackTmpDirectory(), "/tmp");
  if (old != nullptr) setenv("TMPDIR", before.c_str(), 1);
}

}  // namespace

}  // namespace vel::platform
