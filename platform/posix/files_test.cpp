// What POSIX systems add: back-slash names, links, pipes, dot files and permission bits.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <filesystem>
#include <string>

#include "platform/platform.h"
#include "platform/posix/rename.h"
#include "platform/test/variable.h"
#include "platform/test/scratch_directory.h"

namespace vel::platform {

namespace {

namespace fs = std::filesystem;
using test::backSlashed;
using test::readFile;
using test::ScratchDirectory;

mode_t modeOf(const std::string& path) {
  struct stat status {};
  EXPECT_EQ(stat(path.c_str(), &status), 0);
  return status.st_mode & 07777;
}

TEST(PosixFiles, BackSlashNamesReachExistingFiles) {
  const ScratchDirectory scratch;
  const auto typed = [&scratch](const char* entry) { return backSlashed(scratch.path(entry)); };
  const std::string file = scratch.write("File.txt", "x");
  EntryStatus status;
  EXPECT_TRUE(entryExists(typed("FILE.TXT").c_str()) && statusOf(typed("FILE.TXT").c_str(), status));
  EXPECT_NE(copyFile(file.c_str(), typed("FILE.TXT").c_str()), 0);
  EXPECT_EQ(renameFile(file.c_str(), typed("New").c_str()), 0);
  EXPECT_EQ(renameFile(scratch.path("New").c_str(), typed("NEW").c_str()), 0);
  EXPECT_EQ(readFile(scratch.path("NEW")), "x");
  scratch.write("third", "third");
  EXPECT_EQ(renameFile(scratch.path("NEW").c_str(), typed("THIRD").c_str()), EEXIST);
  EXPECT_EQ(removeFile(typed("new").c_str()), 0);
  EXPECT_FALSE(fs::exists(scratch.path("NEW")));
}

TEST(PosixFiles, LongNamesFail) {
  const ScratchDirectory scratch;
  const std::string file = scratch.write("file", "x");
  const std::string name = backSlashed(scratch.path(std::string(260, 'x')));
  EXPECT_FALSE(entryExists(name.c_str()) || isWritable(name.c_str()));
  EXPECT_EQ(copyFile(file.c_str(), name.c_str()), ENAMETOOLONG);
  EXPECT_EQ(renameFile(file.c_str(), name.c_str()), ENAMETOOLONG);
  EXPECT_EQ(removeFile(name.c_str()), ENOENT);
  EXPECT_EQ(removeFile((file + "/x").c_str()), ENOENT);
  EXPECT_EQ(setReadOnly(name.c_str(), true), ENAMETOOLONG);
  EXPECT_EQ(std::distance(fs::directory_iterator(scratch.path()), {}), 1);
}

TEST(PosixFiles, NamesWithALeadingDotAreHidden) {
  const ScratchDirectory scratch;
  for (const char* entry : {".hidden", "..two", ".dir/plain"}) scratch.write(entry, "");
  const auto isHidden = [&scratch](const char* name) {
    return (attributesOf(scratch.path(name).c_str()) & kAttributeHidden) != 0;
  };
  for (const char* name : {".hidden", "..two", ".dir", ".dir/"}) EXPECT_TRUE(isHidden(name)) << name;
  for (const char* name : {".dir/plain", ".", "..", ".dir/..", ".dir/./"})
    EXPECT_FALSE(isHidden(name)) << name;
  EXPECT_EQ(attributesOf("/"), kAttributeDirectory);
}

TEST(PosixFiles, OnlyWriteBitsChange) {
  const ScratchDirectory scratch;
  const std::string file = scratch.write("file", "x");
  const struct {
    mode_t before;
    bool readOnly;
    mode_t after;
  } rows[] = {
      {04755, true, 04555}, {0020, false, 0220}, {0462, true, 0440}, {0555, false, 0755}, {0755, true, 0555}};
  for (const auto& row : rows) {
    ASSERT_EQ(chmod(file.c_str(), row.before), 0);
    EXPECT_EQ(setReadOnly(file.c_str(), row.readOnly), 0);
    EXPECT_EQ(modeOf(file), row.after) << std::oct << row.before;
  }
}

TEST(PosixFiles, CopyKeepsPermissionBits) {
  const ScratchDirectory scratch;
  const std::string source = scratch.write("source", "x");
  ASSERT_EQ(chmod(source.c_str(), 04751), 0);
  for (const std::string& target : {scratch.write("target", "y"), scratch.path("new")}) {
    EXPECT_EQ(copyFile(source.c_str(), target.c_str()), 0);
    EXPECT_EQ(modeOf(target), mode_t{0751});
  }
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

TEST(PosixFiles, CopyNeverWaitsForAPipeAndLeavesNothingOfAFailure) {
  const ScratchDirectory scratch;
  const std::string file = scratch.write("file", "x"), pipe = scratch.path("pipe");
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  EXPECT_NE(copyFile(pipe.c_str(), scratch.path("new").c_str()), 0);
  EXPECT_NE(copyFile(file.c_str(), pipe.c_str()), 0);
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
  const auto rename = [&scratch](const char* from, const char* to) {
    return renameByLink(scratch.path(from).c_str(), scratch.path(to).c_str());
  };
  scratch.write("file", "x");
  scratch.write("directory/other", "other");
  fs::create_directory(scratch.path("empty"));
  for (const char* target : {"file", "directory/other", "directory"})
    EXPECT_EQ(rename("file", target), EEXIST);
  EXPECT_EQ(rename("directory", "empty"), EEXIST);
  EXPECT_EQ(rename("missing", "new"), ENOENT);
  EXPECT_EQ(rename("file", "new"), 0);
  EXPECT_FALSE(fs::exists(scratch.path("file")));
  EXPECT_EQ(rename("directory", "moved"), 0);
  EXPECT_EQ(readFile(scratch.path("new")) + readFile(scratch.path("moved/other")), "xother");
}

TEST(PosixFiles, TmpDirectoryOfLastResort) {
  const test::Variable variable("TMPDIR", "/var/tmp");
  EXPECT_STREQ(fallbackTmpDirectory(), "/var/tmp");
  for (const char* none : {"", static_cast<const char*>(nullptr)}) {
    variable.set(none);
    EXPECT_STREQ(fallbackTmpDirectory(), "/tmp");
  }
}

}  // namespace

}  // namespace vel::platform
