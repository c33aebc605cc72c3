// What POSIX systems add: back-slash names, links, pipes, dot files and permission bits.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <thread>

#include "platform/byte_files.h"
#include "platform/platform.h"
#include "platform/posix/native_path.h"
#include "platform/posix/rename.h"
#include "platform/test/posix/other_user.h"
#include "platform/test/scratch_directory.h"
#include "platform/test/table.h"
#include "platform/test/variable.h"
#include "vel_include/vel_filesys.h"

namespace vel::platform {

namespace {

namespace fs = std::filesystem;
using test::readFile;

class PosixFiles : public testing::Test {
 protected:
  std::string path(const std::string& entry) const { return scratch_.path(entry); }
  std::string typed(const std::string& entry) const { return test::backSlashed(path(entry)); }
  SystemError copy(const char* from, const char* to) const {
    return copyFile(path(from).c_str(), path(to).c_str());
  }
  mode_t modeOf(const char* entry) const {
    struct stat status {};
    EXPECT_EQ(stat(path(entry).c_str(), &status), 0);
    return status.st_mode & 07777;
  }

  test::ScratchDirectory scratch_;
  const std::string file_ = scratch_.write("file", "kept");
};

// What matches nothing stays as typed, and so does all behind it. The exact name comes first, else the first
// in byte order. Only ASCII letters are folded, and nothing in names with slashes.
TEST_F(PosixFiles, BackSlashNamesTakeTheSpellingOfTheirEntries) {
  for (const char* entry :
       {"Dir/Sub/File.txt", "twice/a", "twice/A", "twice/B.txt", "twice/b.TXT", "\u00C4.txt"})
    scratch_.write(entry, "");
  fs::create_symlink("nowhere", path("Broken"));
  const test::CurrentDirectory in(path(""));
  for (const auto& row : test::readTable(VEL_TEST_DATA "test/posix/native_paths.tsv"))
    EXPECT_EQ(NativePath(row[0].c_str()).get(), row.at(1));
  EXPECT_STREQ(NativePath("").get(), "");
  EXPECT_EQ(NativePath(typed("DIR\\sub\\FILE.txt").c_str()).get(), path("Dir/Sub/File.txt"));
  EXPECT_STREQ(NativePath("dir\\SUB\\file.TXT", NativePath::Match::AllButLast).get(), "Dir/Sub/file.TXT");
  EXPECT_STREQ(NativePath("\\TMP", NativePath::Match::AllButLast).get(), "/TMP");
}

TEST_F(PosixFiles, CurrentDirectoryFitsExactlyOrNotAtAll) {
  const test::CurrentDirectory in(path(""));
  const std::string directory = test::backSlashed(fs::current_path().string());
  char out[261];
  EXPECT_TRUE(currentDirectory(out, directory.size() + 1));
  EXPECT_EQ(out, directory);
  for (std::size_t capacity = 0; capacity <= directory.size(); ++capacity)
    EXPECT_FALSE(currentDirectory(out, capacity)) << capacity;
}

/// Goes into a directory whose path has this length.
std::string enterDirectoryOf(std::size_t length, const std::string& start) {
  std::string path = fs::canonical(start).string();
  while (path.size() < length) {
    const std::size_t left = length - path.size() - 1;
    path += '/' + std::string(left > 200 ? 100 : left, 'd');
  }
  fs::create_directories(path);
  fs::current_path(path);
  return path;
}

// With the drive and the final separator 260 characters fit.
TEST_F(PosixFiles, LimitsOfNamesAreExact) {
  const test::CurrentDirectory in(path(""));
  for (const bool fits : {true, false}) {
    const std::string directory = enterDirectoryOf(fits ? 257 : 258, path(""));
    const std::string name = fits ? test::backSlashed(directory) + "\\" : "";
    EXPECT_EQ(VelClDirectory().getAsCString(), name);
    EXPECT_EQ(VelClDirectory().getLastError().errorId, fits ? VEL_NO_ERROR : DIRECTORY_EXPANSION_FAILED);
    const VelClDirectory typed((test::backSlashed(directory) + "\\").c_str());
    EXPECT_EQ(typed.isExistent(), fits);
  }
  const std::string folder = enterDirectoryOf(250, path("")), full = test::backSlashed(folder + "/1234567");
  ASSERT_EQ(full.size(), 260U);
  VelClFile file(VelClFilename(full.c_str()), nullptr);
  EXPECT_FALSE(file.isExistent());
  test::CurrentDirectory out(path(""));
  scratch_.write(folder.substr(fs::canonical(path("")).string().size() + 1) + "/1234567", "text");
  EXPECT_EQ(file.getFileSize(), 4U);
  EXPECT_TRUE(file.remove() && !fs::exists(folder + "/1234567"));
}

TEST_F(PosixFiles, LongNamesFailAndAreNeverCut) {
  EXPECT_TRUE(NativePath(std::string(260, '\\').c_str()).fits());
  EXPECT_FALSE(NativePath(std::string(261, '\\').c_str()).fits());
  const std::string slashName(1000, '/'), name = typed(std::string(260, 'x'));
  EXPECT_EQ(NativePath(slashName.c_str()).get(), slashName.c_str());
  EXPECT_FALSE(entryExists(name.c_str()) || isWritable(name.c_str()));
  EXPECT_EQ(copyFile(file_.c_str(), name.c_str()), ENAMETOOLONG);
  EXPECT_EQ(renameFile(file_.c_str(), name.c_str()), ENAMETOOLONG);
  EXPECT_EQ(setReadOnly(name.c_str(), true), ENAMETOOLONG);
  for (const std::string& missing : {name, file_ + "/x", std::string()})
    EXPECT_EQ(removeFile(missing.c_str()), ENOENT);
  EXPECT_EQ(std::distance(fs::directory_iterator(path("")), {}), 1);
}

TEST_F(PosixFiles, NamesWithALeadingDotAreHidden) {
  for (const char* entry : {".hidden", "..two", ".dir/plain"}) scratch_.write(entry, "");
  const auto isHidden = [this](const char* name) {
    return (attributesOf(path(name).c_str()) & kAttributeHidden) != 0;
  };
  for (const char* name : {".hidden", "..two", ".dir", ".dir/"}) EXPECT_TRUE(isHidden(name)) << name;
  for (const char* name : {".dir/plain", ".", "..", ".dir/..", ".dir/./"})
    EXPECT_FALSE(isHidden(name)) << name;
  EXPECT_EQ(attributesOf("/"), kAttributeDirectory);
}

TEST_F(PosixFiles, OnlyWriteBitsChange) {
  const std::tuple<mode_t, bool, mode_t> rows[] = {
      {04755, true, 04555}, {0020, false, 0220}, {0462, true, 0440}, {0555, false, 0755}, {0755, true, 0555}};
  for (const auto& [before, readOnly, after] : rows) {
    ASSERT_EQ(chmod(file_.c_str(), before), 0);
    EXPECT_EQ(setReadOnly(file_.c_str(), readOnly), 0);
    EXPECT_EQ(modeOf("file"), after) << std::oct << before;
  }
}

TEST_F(PosixFiles, CopiesKeepPermissionBitsAndFollowLinks) {
  ASSERT_EQ(chmod(file_.c_str(), 04751), 0);
  fs::create_symlink("file", path("link"));
  scratch_.write("existing", "old");
  for (const char* target : {"existing", "new"}) {
    EXPECT_EQ(copy("link", target), 0);
    EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(path(target))));
    EXPECT_EQ(modeOf(target), mode_t{0751});
  }
  EXPECT_EQ(copy("file", "link"), EACCES);
  EXPECT_EQ(copy("link", "file"), EACCES);
  EXPECT_EQ(readFile(file_), "kept");
}

TEST_F(PosixFiles, CopyNeverWaitsForAPipeAndLeavesNothingOfAFailure) {
  ASSERT_EQ(mkfifo(path("pipe").c_str(), 0600), 0);
  EXPECT_NE(copy("pipe", "new"), 0);
  EXPECT_NE(copy("file", "pipe"), 0);
  // Reading its first page fails: nothing is mapped there.
  EXPECT_EQ(copyFile("/proc/self/mem", path("new").c_str()), EIO);
  EXPECT_FALSE(fs::exists(path("new")));
}

TEST_F(PosixFiles, CopiesTakeThePlaceOfALinkAndLeaveWhatItLeadsTo) {
  const std::string outside = scratch_.write("outside/file", "outside");
  for (const char* target : {"outside/file", "nowhere"}) {
    fs::create_symlink(target, path("link"));
    EXPECT_EQ(copy("file", "link"), 0);
    EXPECT_EQ(fs::symlink_status(path("link")).type(), fs::file_type::regular);
    EXPECT_EQ(readFile(path("link")), "kept");
    fs::remove(path("link"));
  }
  fs::create_symlink("outside", path("link"));
  EXPECT_EQ(copy("file", "link"), EISDIR);
  fs::create_symlink("/dev/null", path("device"));
  EXPECT_EQ(copy("file", "device"), EINVAL);
  EXPECT_TRUE(fs::is_symlink(path("device")));
  EXPECT_EQ(readFile(outside), "outside");
}

TEST_F(PosixFiles, AFailedCopyLeavesTheOldTarget) {
  scratch_.write("existing", "old");
  scratch_.write("large", std::string(100'000, 'x'));
  rlimit before{};
  getrlimit(RLIMIT_FSIZE, &before);
  const rlimit little{10, before.rlim_max};
  const auto handler = signal(SIGXFSZ, SIG_IGN);
  setrlimit(RLIMIT_FSIZE, &little);
  const SystemError errors[] = {copy("large", "existing"), copy("large", "new")};
  setrlimit(RLIMIT_FSIZE, &before);
  signal(SIGXFSZ, handler);
  EXPECT_EQ(errors[0], EFBIG);
  EXPECT_EQ(errors[1], EFBIG);
  EXPECT_EQ(readFile(path("existing")), "old");
  EXPECT_EQ(std::distance(fs::directory_iterator(path("")), {}), 3);
}

TEST_F(PosixFiles, CopiesGoIntoAFileWhoseDirectoryTakesNoOther) {
  if (geteuid() == 0 && !test::canBecomeOtherUser()) GTEST_SKIP() << "nobody to be refused anything";
  const std::string target = scratch_.write("closed/existing", "old target");
  const std::string sticky = scratch_.write("sticky/existing", "old target");
  for (const std::string& name : {file_, target, sticky}) ASSERT_EQ(chmod(name.c_str(), 0666), 0);
  for (const auto& [name, mode] : {std::pair{"", 0755}, {"closed", 0555}, {"sticky", 01777}})
    ASSERT_EQ(chmod(path(name).c_str(), static_cast<mode_t>(mode)), 0);
  const auto copyAll = [&] {
    for (const char* name : {"closed/existing", "sticky/existing"})
      if (const SystemError error = copy("file", name); error != 0) return error;
    return copy("file", "closed/new") == EACCES ? 0 : 1;
  };
  const auto unprivileged = [] { return geteuid() != 0 || test::becomeOtherUser(); };
  EXPECT_EQ(test::exitCodeOf(unprivileged, copyAll), 0);
  EXPECT_EQ(readFile(target) + readFile(sticky), "keptkept");
}

// The second name of a file shows what became of it.
TEST_F(PosixFiles, RemovedFilesAreMadeWritableButNoLinksTarget) {
  ASSERT_EQ(chmod(file_.c_str(), 0444), 0);
  fs::create_symlink("file", path("link"));
  EXPECT_EQ(removeFile(path("link").c_str()), 0);
  EXPECT_EQ(modeOf("file"), mode_t{0444});
  fs::create_hard_link(file_, path("second"));
  EXPECT_EQ(removeFile(file_.c_str()), 0);
  EXPECT_EQ(modeOf("second"), mode_t{0644});
}

// The superuser could remove it, and is another user meanwhile.
TEST_F(PosixFiles, AFileThatCannotBeRemovedKeepsItsPermissions) {
  const std::string kept = scratch_.write("locked/file", "kept");
  ASSERT_EQ(chmod(path("locked").c_str(), 0555) | chmod(kept.c_str(), 0440), 0);
  constexpr uid_t kOther = 65534;
  const bool isRoot = geteuid() == 0;
  if (isRoot && (chown(kept.c_str(), kOther, static_cast<gid_t>(-1)) != 0 || seteuid(kOther) != 0))
    GTEST_SKIP() << "there is no other user";
  VelClFile file(VelClFilename(kept.c_str()), nullptr);
  EXPECT_FALSE(file.remove());
  EXPECT_EQ(removeFile(kept.c_str()), EACCES);
  EXPECT_TRUE(!isRoot || seteuid(0) == 0);
  EXPECT_EQ(file.getLastError().errorClass, VelEnErrorClass::IO_PERMISSION_DENIED);
  EXPECT_EQ(modeOf("locked/file"), mode_t{0440});
}

TEST_F(PosixFiles, RenamingNeverReplaces) {
  // With and without the file system's help.
  using Way = SystemError (*)(const char*, const char*);
  const Way byLink = [](const char* from, const char* to) { return renameByLink(AT_FDCWD, from, to); };
  for (const Way way : {Way{renameFile}, byLink}) {
    const test::ScratchDirectory scratch;
    const auto rename = [&](const char* from, const char* to) {
      return way(scratch.path(from).c_str(), scratch.path(to).c_str());
    };
    scratch.write("file", "kept");
    scratch.write("directory/other", "other");
    fs::create_directory(scratch.path("empty"));
    for (const char* target : {"file", "directory/other", "directory"})
      EXPECT_EQ(rename("file", target), EEXIST);
    EXPECT_EQ(rename("directory", "empty"), EEXIST);
    EXPECT_EQ(rename("missing", "new"), ENOENT);
    EXPECT_EQ(rename("file", "new") | rename("directory", "moved"), 0);
    EXPECT_EQ(readFile(scratch.path("new")) + readFile(scratch.path("moved/other")), "keptother");
    EXPECT_FALSE(fs::exists(scratch.path("file")));
  }
}

TEST(PosixTmpDirectory, IsTmpdirOrTmp) {
  const test::Variable variable("TMPDIR", "/var/tmp");
  EXPECT_STREQ(fallbackTmpDirectory(), "/var/tmp");
  for (const char* none : {"", static_cast<const char*>(nullptr)}) {
    variable.set(none);
    EXPECT_STREQ(fallbackTmpDirectory(), "/tmp");
  }
}

std::string readAll(int descriptor) {
  char bytes[16];
  std::string text;
  for (std::int64_t count; (count = readBytes(descriptor, bytes, sizeof bytes)) > 0;)
    text.append(bytes, static_cast<std::size_t>(count));
  closeDescriptor(descriptor);
  return text;
}

// Reading blocks, opening does not.
TEST_F(PosixFiles, OpeningAPipeWaitsForNoWriter) {
  ASSERT_EQ(mkfifo(path("pipe").c_str(), 0600), 0);
  EXPECT_EQ(openForReading(path("pipe").c_str()), -1);
  const int other = open(path("pipe").c_str(), O_RDONLY | O_NONBLOCK);
  EXPECT_EQ(openForReading(path("pipe").c_str()), -1) << "a second reader is no writer";
  const int writer = open(path("pipe").c_str(), O_WRONLY);
  const int silent = openForReading(path("pipe").c_str());
  EXPECT_EQ(fcntl(silent, F_GETFL) & O_NONBLOCK, 0);
  closeDescriptor(silent);
  ASSERT_EQ(write(writer, "left", 4), 4);
  closeDescriptor(writer);
  EXPECT_EQ(readAll(openForReading(path("pipe").c_str())), "left");
  EXPECT_EQ(openForReading(path("pipe").c_str()), -1);
  closeDescriptor(other);
  std::thread late([&] {
    const int end = open(path("pipe").c_str(), O_WRONLY);
    EXPECT_EQ(write(end, "late", 4), 4);
    closeDescriptor(end);
  });
  EXPECT_EQ(readAll(openForReading(path("pipe").c_str(), PipeWithoutWriter::Await)), "late");
  late.join();
}

// As a shell hands over the output of a program, which may have ended before and written nothing.
TEST_F(PosixFiles, PipesWithoutANameAreReadToTheirEnd) {
  for (const std::string text : {"", "text"}) {
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    ASSERT_EQ(write(ends[1], text.data(), text.size()), static_cast<ssize_t>(text.size()));
    closeDescriptor(ends[1]);
    const int descriptor = openForReading(("/dev/fd/" + std::to_string(ends[0])).c_str());
    ASSERT_GE(descriptor, 0);
    EXPECT_EQ(readAll(descriptor), text);
    closeDescriptor(ends[0]);
  }
}

}  // namespace

}  // namespace vel::platform
